<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>Orvo</name>
    <message>
        <source>&amp;File</source>
        <translation>文件(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;New Recorder</source>
        <translation>新建录音机(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>打开(&amp;O)…</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>最近打开的文件(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>导入(&amp;I)…</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>另存为(&amp;A)…</translation>
    </message>
    <message>
        <source>Export Rin&amp;gtone…</source>
        <translation>导出铃声(&amp;G)…</translation>
    </message>
    <message>
        <source>Export &amp;Waveform Picture…</source>
        <translation>导出波形图片(&amp;W)…</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>关闭(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>退出(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>编辑(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>撤销(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>重做(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>撤销(&amp;U)：%1</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>重做(&amp;R)：%1</translation>
    </message>
    <message>
        <source>Remove After Marker</source>
        <translation>删除标记之后的内容</translation>
    </message>
    <message>
        <source>Remove Before Marker</source>
        <translation>删除标记之前的内容</translation>
    </message>
    <message>
        <source>Reverse Audio</source>
        <translation>反转音频</translation>
    </message>
    <message>
        <source>&amp;Transport</source>
        <translation>走带(&amp;T)</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>录音</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>播放</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>To Start</source>
        <translation>转到开头</translation>
    </message>
    <message>
        <source>To End</source>
        <translation>转到末尾</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>空格</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>回车</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>视图(&amp;V)</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>频谱</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>帮助(&amp;H)</translation>
    </message>
    <message>
        <source>Remove &amp;After Marker</source>
        <translation>删除标记之后的内容(&amp;A)</translation>
    </message>
    <message>
        <source>Remove &amp;Before Marker</source>
        <translation>删除标记之前的内容(&amp;B)</translation>
    </message>
    <message>
        <source>Re&amp;verse Audio</source>
        <translation>反转音频(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;About Orvo</source>
        <translation>关于 Orvo(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>录音(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>播放(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>停止(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;To Start</source>
        <translation>转到开头(&amp;T)</translation>
    </message>
    <message>
        <source>To &amp;End</source>
        <translation>转到末尾(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Spectrum</source>
        <translation>频谱(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>打开(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>导入(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>替换(&amp;R)</translation>
    </message>
    <message>
        <source>Nothing has been reported.</source>
        <translation>没有任何报告。</translation>
    </message>
    <message>
        <source>Recording %1</source>
        <translation>录音 %1</translation>
    </message>
    <message>
        <source>There is no file %1.</source>
        <translation>没有文件%1。</translation>
    </message>
    <message>
        <source>There is no file “%1”.</source>
        <translation>没有文件“%1”。</translation>
    </message>
    <message>
        <source>You may not write in the folder %1. Choose another.</source>
        <translation>您无权写入文件夹%1。请选择其他文件夹。</translation>
    </message>
    <message>
        <source>&amp;Documentation</source>
        <translation>文档(&amp;D)</translation>
    </message>
    <message>
        <source>D&amp;iagnostics</source>
        <translation>诊断(&amp;I)</translation>
    </message>
    <message>
        <source>About Orvo</source>
        <translation>关于 Orvo</translation>
    </message>
    <message>
        <source>Orvo</source>
        <translation>Orvo</translation>
    </message>
    <message>
        <source>Unnamed</source>
        <translation>未命名</translation>
    </message>
    <message>
        <source>&amp;Recovered Recordings…</source>
        <translation>恢复的录音(&amp;R)…</translation>
    </message>
    <message>
        <source>Recovered Recordings</source>
        <translation>恢复的录音</translation>
    </message>
    <message>
        <source>Orvo ended unexpectedly.</source>
        <translation>Orvo 意外退出。</translation>
    </message>
    <message>
        <source>Recordings kept: %1</source>
        <translation>已保留的录音：%1</translation>
    </message>
    <message>
        <source>Each recording opens in a window of its own. It is kept until you save or discard it.</source>
        <translation>每个录音都在单独的窗口中打开，并会一直保留，直到您保存或放弃它。</translation>
    </message>
    <message>
        <source>There are no recovered recordings.</source>
        <translation>没有恢复的录音。</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>日期</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>长度</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状态</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>完整</translation>
    </message>
    <message>
        <source>Damaged</source>
        <translation>已损坏</translation>
    </message>
    <message>
        <source>Still being written</source>
        <translation>仍在写入</translation>
    </message>
    <message>
        <source>Waiting for room on the disk</source>
        <translation>正在等待磁盘空间</translation>
    </message>
    <message>
        <source>&amp;Later</source>
        <translation>稍后(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>删除(&amp;D)</translation>
    </message>
    <message>
        <source>Delete for good?</source>
        <translation>要永久删除吗？</translation>
    </message>
    <message>
        <source>Recordings to be deleted: %1. This cannot be undone.</source>
        <translation>要删除的录音：%1。此操作无法撤销。</translation>
    </message>
    <message>
        <source>Recovered %1</source>
        <translation>已恢复 %1</translation>
    </message>
    <message>
        <source>%1 could not be deleted</source>
        <translation>无法删除%1</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 小时 %2 分</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1 分 %2 秒</translation>
    </message>
    <message>
        <source>Orvo Diagnostics</source>
        <translation>Orvo 诊断</translation>
    </message>
    <message>
        <source>Orvo %1

An audio recorder and simple editor.</source>
        <translation>Orvo %1

录音与简易音频编辑软件。</translation>
    </message>
    <message>
        <source>Usage: orvo [OPTION…] [--] [FILE…]</source>
        <translation>用法：orvo [OPTION…] [--] [FILE…]</translation>
    </message>
    <message>
        <source>Orvo records from the default sound input, shows the growing waveform, and plays it back. Each file opens in a window of its own. Without a file, an empty recorder opens.</source>
        <translation>Orvo 从默认声音输入录音，显示不断增长的波形，并可播放。每个文件在自己的窗口中打开。没有文件时，打开一个空的录音机。</translation>
    </message>
    <message>
        <source>Arguments:</source>
        <translation>参数：</translation>
    </message>
    <message>
        <source>A path or a file:// address. Orvo opens caf, aif, aiff, wav, mp3, mp4, m4a, m4r and aac.</source>
        <translation>路径或 file:// 地址。Orvo 可以打开 caf、aif、aiff、wav、mp3、mp4、m4a、m4r 和 aac。</translation>
    </message>
    <message>
        <source>Ends the options. What follows is a file, even if it begins with a dash.</source>
        <translation>结束选项。其后的内容都是文件，即使以短横线开头。</translation>
    </message>
    <message>
        <source>Prints this text.</source>
        <translation>显示本说明。</translation>
    </message>
    <message>
        <source>Prints the version.</source>
        <translation>显示版本。</translation>
    </message>
    <message>
        <source>These and the other options of Qt are passed on to Qt.</source>
        <translation>这些选项以及 Qt 的其他选项会传给 Qt。</translation>
    </message>
    <message>
        <source>Environment:</source>
        <translation>环境变量：</translation>
    </message>
    <message>
        <source>The language of the texts: English, German, French, Spanish, Japanese or Simplified Chinese.</source>
        <translation>界面的语言：英语、德语、法语、西班牙语、日语或简体中文。</translation>
    </message>
    <message>
        <source>The directory in which open recordings are kept, 20 MB a minute. Otherwise /tmp, or /var/tmp if /tmp is in memory.</source>
        <translation>存放已打开录音的目录，每分钟 20 MB。否则为 /tmp；如果 /tmp 在内存中，则为 /var/tmp。</translation>
    </message>
    <message>
        <source>If Orvo ends unexpectedly, recordings that were not saved are kept in orvo/recovered below this directory. Otherwise below ~/.local/share.</source>
        <translation>如果 Orvo 意外退出，未保存的录音会保留在此目录下的 orvo/recovered 中。否则在 ~/.local/share 下。</translation>
    </message>
    <message>
        <source>Exit status:</source>
        <translation>退出状态：</translation>
    </message>
    <message>
        <source>Orvo ended as asked.</source>
        <translation>Orvo 按要求结束。</translation>
    </message>
    <message>
        <source>The help or the version could not be printed.</source>
        <translation>无法显示说明或版本。</translation>
    </message>
    <message>
        <source>An option is unknown. Nothing was opened.</source>
        <translation>有未知的选项。没有打开任何内容。</translation>
    </message>
    <message>
        <source>orvo: unknown option: %1
Try orvo --help</source>
        <translation>orvo：未知的选项：%1
请尝试 orvo --help</translation>
    </message>
    <message>
        <source>en/index.html</source>
        <translation>zh_CN/index.html</translation>
    </message>
    <message>
        <source>%1 is missing. Install Orvo again.</source>
        <translation>缺少 %1。请重新安装 Orvo。</translation>
    </message>
    <message>
        <source>https://orvo.example/</source>
        <translation>https://orvo.example/</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>波形</translation>
    </message>
    <message>
        <source>Playback marker</source>
        <translation>播放标记</translation>
    </message>
    <message>
        <source>Level meter</source>
        <translation>电平表</translation>
    </message>
    <message>
        <source>Position and length</source>
        <translation>位置和长度</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>进度</translation>
    </message>
    <message>
        <source>Loading</source>
        <translation>正在载入</translation>
    </message>
    <message>
        <source>Importing</source>
        <translation>正在导入</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>正在保存</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>正在导出</translation>
    </message>
    <message>
        <source>Drawing the waveform</source>
        <translation>正在绘制波形</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>确定(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>取消(&amp;C)</translation>
    </message>
    <message>
        <source>Do&amp;n’t Save</source>
        <translation>不保存(&amp;N)</translation>
    </message>
    <message>
        <source>Do you want to save the changes made to “%1”?</source>
        <translation>要保存对“%1”所做的更改吗？</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don’t save them.</source>
        <translation>如果不保存，您的更改将会丢失。</translation>
    </message>
    <message>
        <source>The recording was paused.</source>
        <translation>录音已暂停。</translation>
    </message>
    <message>
        <source>Record (R)</source>
        <translation>录音 (R)</translation>
    </message>
    <message>
        <source>Play (Space)</source>
        <translation>播放 (空格键)</translation>
    </message>
    <message>
        <source>To Start (Return)</source>
        <translation>转到开头 (回车键)</translation>
    </message>
    <message>
        <source>Ends the recording (R)</source>
        <translation>结束录音 (R)</translation>
    </message>
    <message>
        <source>Records at the end (R)</source>
        <translation>在末尾录音 (R)</translation>
    </message>
    <message>
        <source>Records from %1 over what is there (R)</source>
        <translation>从 %1 起覆盖已有内容录音 (R)</translation>
    </message>
    <message>
        <source>Recording position</source>
        <translation>录音位置</translation>
    </message>
    <message>
        <source>Clipping</source>
        <translation>削波</translation>
    </message>
    <message>
        <source>Too loud: clipped at %1. Click to turn off.</source>
        <translation>音量过大：在 %1 处出现削波。点击即可熄灭。</translation>
    </message>
    <message>
        <source>Quitting was cancelled</source>
        <translation>退出已取消</translation>
    </message>
    <message>
        <source>A panel of “%1” is open. Answer it first, then quit again.</source>
        <translation>“%1”的对话框仍打开着。请先处理它，然后再次退出。</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>打开</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>导入</translation>
    </message>
    <message>
        <source>Import File</source>
        <translation>导入文件</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Save &amp;in:</source>
        <translation>保存位置(&amp;I)：</translation>
    </message>
    <message>
        <source>File &amp;type:</source>
        <translation>文件类型(&amp;T)：</translation>
    </message>
    <message>
        <source>File type</source>
        <translation>文件类型</translation>
    </message>
    <message>
        <source>Audio Files</source>
        <translation>音频文件</translation>
    </message>
    <message>
        <source>All Files</source>
        <translation>所有文件</translation>
    </message>
    <message>
        <source>WAV</source>
        <translation>WAV</translation>
    </message>
    <message>
        <source>AIFF</source>
        <translation>AIFF</translation>
    </message>
    <message>
        <source>CAF</source>
        <translation>CAF</translation>
    </message>
    <message>
        <source>AAC</source>
        <translation>AAC</translation>
    </message>
    <message>
        <source>Export Ringtone</source>
        <translation>导出铃声</translation>
    </message>
    <message>
        <source>A ringtone begins at the marker, or at the start when the marker is at the end, and lasts at most %1 seconds.</source>
        <translation>铃声从标记处开始（标记位于末尾时从头开始），最长 %1 秒。</translation>
    </message>
    <message>
        <source>Export Waveform Picture</source>
        <translation>导出波形图片</translation>
    </message>
    <message>
        <source>The page could not be opened</source>
        <translation>无法打开网页</translation>
    </message>
    <message>
        <source>No program was found that opens %1.</source>
        <translation>未找到可打开 %1 的程序。</translation>
    </message>
    <message>
        <source>The recording was stopped</source>
        <translation>录音已停止</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

Everything recorded before is kept.</source>
        <translation>无法将音频写入临时文件。%1

此前录制的内容均已保留。</translation>
    </message>
    <message>
        <source>Playing was stopped</source>
        <translation>播放已停止</translation>
    </message>
    <message>
        <source>The audio could not be read from the temporary file. %1</source>
        <translation>无法从临时文件读取音频。%1</translation>
    </message>
    <message>
        <source>%1 could not be loaded whole</source>
        <translation>无法完整载入%1</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

%2</source>
        <translation>无法将音频写入临时文件。%1

%2</translation>
    </message>
    <message>
        <source>Nothing was imported.</source>
        <translation>未导入任何内容。</translation>
    </message>
    <message>
        <source>Space for less than %1 minutes of recording is left in %2.</source>
        <translation>%2 中的剩余空间可供录音不到 %1 分钟。</translation>
    </message>
    <message>
        <source>Space for less than a minute of recording is left in %1.</source>
        <translation>%1 中的剩余空间可供录音不到 1 分钟。</translation>
    </message>
    <message>
        <source>%1 does not fit on the disk</source>
        <translation>磁盘放不下%1</translation>
    </message>
    <message>
        <source>It needs about %1, but the disk of the folder %2 has only %3 left.</source>
        <translation>大约需要 %1，但文件夹 %2 所在的磁盘只剩 %3。</translation>
    </message>
    <message>
        <source>Orvo is recording</source>
        <translation>Orvo 正在录音</translation>
    </message>
    <message>
        <source>Goes in at the end.</source>
        <translation>将放在末尾。</translation>
    </message>
    <message>
        <source>Goes in at %1.</source>
        <translation>将放在 %1 处。</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces %2.</source>
        <translation>将放在 %1 处，并替换 %2。</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces about %2.</source>
        <translation>将放在 %1 处，并替换约 %2。</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>Everything loaded before is kept.</source>
        <translation>此前载入的内容均已保留。</translation>
    </message>
    <message>
        <source>The recording is too long for a file of the type %1. Choose another type.</source>
        <translation>录音过长，无法存为 %1 类型的文件。请选择其他类型。</translation>
    </message>
    <message>
        <source>An AAC file cannot be empty. Record something first.</source>
        <translation>AAC 文件不能为空。请先录音。</translation>
    </message>
    <message>
        <source>%1 seconds of the recording could not be read.</source>
        <translation>录音中有 %1 秒无法读取。</translation>
    </message>
    <message>
        <source>They are silent in the file.</source>
        <translation>这部分在文件中为静音。</translation>
    </message>
    <message>
        <source>The file that was there was kept. Save under another name to get the rest.</source>
        <translation>原有文件已保留。请以其他名称保存其余部分。</translation>
    </message>
    <message>
        <source>The file was saved but could not be opened</source>
        <translation>文件已保存，但无法打开</translation>
    </message>
    <message>
        <source>%1 could not be saved</source>
        <translation>无法保存%1</translation>
    </message>
    <message>
        <source>%1 was saved with gaps</source>
        <translation>%1 已保存，但有缺失</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>“%1”</translation>
    </message>
    <message>
        <source>You do not have the permission for it.</source>
        <translation>您没有相应的权限。</translation>
    </message>
    <message>
        <source>The disk is full.</source>
        <translation>磁盘已满。</translation>
    </message>
    <message>
        <source>You have used up your share of the disk.</source>
        <translation>您的磁盘配额已用完。</translation>
    </message>
    <message>
        <source>The file would become larger than the disk allows.</source>
        <translation>文件将超出磁盘允许的大小。</translation>
    </message>
    <message>
        <source>The disk can only be read.</source>
        <translation>磁盘为只读。</translation>
    </message>
    <message>
        <source>The folder or the file is not there any more.</source>
        <translation>文件夹或文件已不存在。</translation>
    </message>
    <message>
        <source>“%1” already exists. Do you want to replace it?</source>
        <translation>“%1”已存在。要替换它吗？</translation>
    </message>
    <message>
        <source>Another program has changed the folder or the file meanwhile.</source>
        <translation>其间另一个程序更改了文件夹或文件。</translation>
    </message>
    <message>
        <source>&amp;Look in:</source>
        <translation>查找位置(&amp;L)：</translation>
    </message>
    <message>
        <source>File &amp;name:</source>
        <translation>文件名(&amp;N)：</translation>
    </message>
    <message>
        <source>Files of &amp;type:</source>
        <translation>显示类型(&amp;T)：</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>大小</translation>
    </message>
    <message>
        <source>Date modified</source>
        <translation>修改日期</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>文件</translation>
    </message>
    <message>
        <source>Parent Folder</source>
        <translation>上级文件夹</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>新建文件夹</translation>
    </message>
    <message>
        <source>Name of the new folder:</source>
        <translation>新文件夹的名称：</translation>
    </message>
    <message>
        <source>Waiting for the folder to answer…</source>
        <translation>正在等待文件夹响应…</translation>
    </message>
    <message>
        <source>The files cannot be shown</source>
        <translation>无法显示文件</translation>
    </message>
    <message>
        <source>There is no room for another window</source>
        <translation>无法再打开窗口</translation>
    </message>
    <message>
        <source>Too many files are open. Close some windows, then try again.</source>
        <translation>打开的文件过多。请关闭一些窗口，然后重试。</translation>
    </message>
    <message>
        <source>%1 can only be overwritten</source>
        <translation>%1 只能被覆盖</translation>
    </message>
    <message>
        <source>You may not make files in its folder. The old file is copied to the temporary directory first. The copy is kept if writing fails.</source>
        <translation>您无权在其文件夹中创建文件。旧文件会先复制到临时目录。如果写入失败，该副本将保留。</translation>
    </message>
    <message>
        <source>&amp;Overwrite</source>
        <translation>覆盖(&amp;O)</translation>
    </message>
    <message>
        <source>There is no such folder.</source>
        <translation>没有这个文件夹。</translation>
    </message>
    <message>
        <source>It is not a folder.</source>
        <translation>它不是文件夹。</translation>
    </message>
    <message>
        <source>The temporary directory “%1” cannot be used. %2</source>
        <translation>无法使用临时目录“%1”。%2</translation>
    </message>
    <message>
        <source>title</source>
        <translation>标题</translation>
    </message>
    <message>
        <source>artist</source>
        <translation>艺术家</translation>
    </message>
    <message>
        <source>album</source>
        <translation>专辑</translation>
    </message>
    <message>
        <source>date</source>
        <translation>日期</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>注释</translation>
    </message>
    <message>
        <source>genre</source>
        <translation>流派</translation>
    </message>
    <message>
        <source>track</source>
        <translation>音轨号</translation>
    </message>
    <message>
        <source>cover</source>
        <translation>封面</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1、%2</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1和%2</translation>
    </message>
    <message>
        <source>%1 kHz</source>
        <translation>%1 kHz</translation>
    </message>
    <message>
        <source>%1 bits</source>
        <translation>%1 位</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1 个声道</translation>
    </message>
    <message>
        <source>lossless sound</source>
        <translation>无损声音</translation>
    </message>
    <message>
        <source>compressed sound (AAC)</source>
        <translation>有损压缩的声音（AAC）</translation>
    </message>
    <message>
        <source>The old file has %1, the new one only has %2.</source>
        <translation>旧文件为 %1，新文件只有 %2。</translation>
    </message>
    <message>
        <source>16 bits, 44.1 kHz, stereo</source>
        <translation>16 位，44.1 kHz，立体声</translation>
    </message>
    <message>
        <source>AAC with 256 kbit/s, 44.1 kHz, stereo</source>
        <translation>AAC 256 kbit/s，44.1 kHz，立体声</translation>
    </message>
    <message>
        <source>%1; keeps %2</source>
        <translation>%1；保留%2</translation>
    </message>
    <message>
        <source>%1; leaves out the cover</source>
        <translation>%1；不含封面</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>保存(&amp;S)</translation>
    </message>
    <message>
        <source>The file is damaged. What was in it is kept in %1.</source>
        <translation>文件已损坏。其原有内容保留在 %1 中。</translation>
    </message>
    <message>
        <source>There is a folder of this name.</source>
        <translation>存在同名文件夹。</translation>
    </message>
    <message>
        <source>It is not an ordinary file.</source>
        <translation>它不是普通文件。</translation>
    </message>
    <message>
        <source>The disk could not be read or written.</source>
        <translation>无法读写磁盘。</translation>
    </message>
    <message>
        <source>The disk has been removed.</source>
        <translation>磁盘已被移除。</translation>
    </message>
    <message>
        <source>The name is too long.</source>
        <translation>名称过长。</translation>
    </message>
    <message>
        <source>The name is a link that leads back to itself.</source>
        <translation>该名称是指向自身的链接。</translation>
    </message>
    <message>
        <source>Too many files are open.</source>
        <translation>打开的文件过多。</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>内存不足。</translation>
    </message>
    <message>
        <source>The computer is too busy just now.</source>
        <translation>计算机现在太忙。</translation>
    </message>
    <message>
        <source>Another program is using it.</source>
        <translation>其他程序正在使用它。</translation>
    </message>
    <message>
        <source>There is already a file or a folder of this name.</source>
        <translation>已有同名的文件或文件夹。</translation>
    </message>
    <message>
        <source>The disk does not allow it.</source>
        <translation>磁盘不支持此操作。</translation>
    </message>
    <message>
        <source>The disk does not answer.</source>
        <translation>磁盘没有响应。</translation>
    </message>
    <message>
        <source>You are not allowed to read %1. Ask its owner, or change its permissions.</source>
        <translation>您无权读取%1。请联系其所有者或更改其权限。</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose a sound file inside it.</source>
        <translation>%1 是文件夹。请选择其中的音频文件。</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file, but a device or a connection to another program.</source>
        <translation>%1 不是普通文件，而是设备或与其他程序的连接。</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 是空文件。</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long.</source>
        <translation>%1 的名称或路径过长。</translation>
    </message>
    <message>
        <source>There is no sound in %1.</source>
        <translation>%1 中没有声音。</translation>
    </message>
    <message>
        <source>The sound in %1 is encoded in a way that cannot be read. Up to 8 channels and rates from 1,000 to 768,000 Hz can be.</source>
        <translation>%1 中声音的编码方式无法读取。最多支持 8 个声道，采样率为 1,000 至 768,000 Hz。</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error.</source>
        <translation>存储%1的介质报告了错误。</translation>
    </message>
    <message>
        <source>%1 could not be opened, because too many files are open. Close some windows first.</source>
        <translation>打开的文件过多，无法打开%1。请先关闭一些窗口。</translation>
    </message>
    <message>
        <source>There was not enough memory to read %1.</source>
        <translation>内存不足，无法读取%1。</translation>
    </message>
    <message>
        <source>%1 cannot be read: FFmpeg’s libraries are missing on this computer.</source>
        <translation>无法读取%1：这台计算机上缺少 FFmpeg 的库。</translation>
    </message>
    <message>
        <source>%1 is not a sound file that can be read, or it is damaged.</source>
        <translation>%1 不是可读取的音频文件，或者已损坏。</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error. What could be read before it is kept.</source>
        <translation>存储%1的介质报告了错误。此前已读取的内容予以保留。</translation>
    </message>
    <message>
        <source>There was not enough memory to read all of %1. What could be read is kept.</source>
        <translation>内存不足，无法完整读取%1。已读取的内容予以保留。</translation>
    </message>
    <message>
        <source>From some place on the sound in %1 is encoded in a way that cannot be read. What came before it is kept.</source>
        <translation>%1 中的声音从某处起以无法读取的方式编码。此前的内容予以保留。</translation>
    </message>
    <message>
        <source>%1 can no longer be read. What could be read of it is kept.</source>
        <translation>%1 已无法继续读取。已读取的内容予以保留。</translation>
    </message>
    <message>
        <source>%1 is damaged or was cut off. What could be read of it is kept.</source>
        <translation>%1 已损坏或不完整。已读取的内容予以保留。</translation>
    </message>
    <message>
        <source>The folder in which %1 was to be written is not there. Choose another one.</source>
        <translation>要写入%1的文件夹不存在。请另选一个。</translation>
    </message>
    <message>
        <source>You are not allowed to write %1. Choose another folder, or change the permissions.</source>
        <translation>您无权写入%1。请选择其他文件夹或更改权限。</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose another name.</source>
        <translation>%1 是文件夹。请选择其他名称。</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file. Choose another name.</source>
        <translation>%1 不是普通文件。请选择其他名称。</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long. Choose a shorter one.</source>
        <translation>%1 的名称或路径过长。请使用较短的名称或路径。</translation>
    </message>
    <message>
        <source>There is not enough room to write %1. Make room, or choose another disk.</source>
        <translation>空间不足，无法写入%1。请释放空间或选择其他磁盘。</translation>
    </message>
    <message>
        <source>%1 would be larger than a file of its kind or on this disk may be. Choose another kind of file or another disk.</source>
        <translation>%1 将超出此类文件或此磁盘允许的大小。请选择其他文件类型或其他磁盘。</translation>
    </message>
    <message>
        <source>%1 could not be written, because too many files are open. Close some windows first.</source>
        <translation>打开的文件过多，无法写入%1。请先关闭一些窗口。</translation>
    </message>
    <message>
        <source>There was not enough memory to write %1.</source>
        <translation>内存不足，无法写入%1。</translation>
    </message>
    <message>
        <source>%1 cannot be written: FFmpeg’s libraries are missing on this computer.</source>
        <translation>无法写入%1：这台计算机上缺少 FFmpeg 的库。</translation>
    </message>
    <message>
        <source>%1 cannot be written as a file of this kind.</source>
        <translation>%1 无法写为此类文件。</translation>
    </message>
    <message>
        <source>The medium on which %1 was to be written reported an error. It may have been removed.</source>
        <translation>要写入%1的介质报告了错误。它可能已被移除。</translation>
    </message>
    <message>
        <source>File Format Error</source>
        <translation>文件格式错误</translation>
    </message>
    <message>
        <source>The file is of an unsupported format.</source>
        <translation>不支持该文件格式。</translation>
    </message>
    <message>
        <source>Core Audio Error</source>
        <translation>Core Audio 错误</translation>
    </message>
    <message>
        <source>Core Audio returned the error: %s (%s)</source>
        <translation>Core Audio 返回错误：%s (%s)</translation>
    </message>
    <message>
        <source>No sound input could be opened. Connect a microphone or another input, check that sound works on this computer, then press Record again. Everything recorded so far is kept.</source>
        <translation>无法打开声音输入。请连接麦克风或其他输入设备，确认这台计算机的声音工作正常，然后再次按“录音”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>声音输入已消失：设备被拔出，或声音系统已停止。录音已结束。请重新连接输入设备，然后按“录音”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>声音输入已消失：设备被拔出，或声音系统已停止。请在按“录音”之前重新连接。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>声音输入“%1”已消失：设备被拔出，或声音系统已停止。请在按“录音”之前重新连接。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>声音输入“%1”已消失：设备被拔出，或声音系统已停止。录音已结束。请重新连接输入设备，然后按“录音”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>声音输入不再传来任何数据：输入已停滞，或声音系统没有响应。录音已结束。请检查输入设备，然后按“录音”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input “%1”: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>声音输入“%1”不再传来任何数据：输入已停滞，或声音系统没有响应。录音已结束。请检查输入设备，然后按“录音”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>The sound output stands still, or the sound system does not answer. Playback has ended. Check the output, then press Play. Everything recorded so far is kept.</source>
        <translation>声音输出已停滞，或声音系统没有响应。播放已结束。请检查输出设备，然后按“播放”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>Recording from the default input</source>
        <translation>正在从默认输入录音</translation>
    </message>
    <message>
        <source>Recording from %1</source>
        <translation>正在从%1录音</translation>
    </message>
    <message>
        <source>Recording has been paused.</source>
        <translation>录音已暂停。</translation>
    </message>
    <message>
        <source>No microphone</source>
        <translation>没有麦克风</translation>
    </message>
    <message>
        <source>No microphone: recording what this computer plays</source>
        <translation>没有麦克风：正在录制这台计算机播放的声音</translation>
    </message>
    <message>
        <source>Nothing is coming in</source>
        <translation>没有声音传入</translation>
    </message>
    <message>
        <source>This computer is running out of memory</source>
        <translation>这台计算机的内存快用完了</translation>
    </message>
    <message>
        <source>%1 s were lost at %2</source>
        <translation>在%2处丢失了%1秒</translation>
    </message>
    <message>
        <source>Lost in this recording: %1 s, first at %2</source>
        <translation>本次录音共丢失：%1秒，首次在%2</translation>
    </message>
    <message>
        <source>Lost sound</source>
        <translation>丢失的声音</translation>
    </message>
    <message>
        <source>The system allows no further thread. Close some windows or other programs, then try again. Everything recorded so far is kept.</source>
        <translation>系统不允许创建更多线程。请关闭一些窗口或其他程序，然后重试。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>No sound output could be opened. Connect loudspeakers or headphones, check that sound works on this computer, then press Play again. Everything recorded so far is kept.</source>
        <translation>无法打开声音输出。请连接扬声器或耳机，确认这台计算机的声音工作正常，然后再次按“播放”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>The sound output has gone: it was unplugged, or the sound system stopped. Playback has ended. Connect the output again, then press Play. Everything recorded so far is kept.</source>
        <translation>声音输出已消失：设备被拔出，或声音系统已停止。播放已结束。请重新连接输出设备，然后按“播放”。到目前为止录制的内容均已保留。</translation>
    </message>
    <message>
        <source>no queue on record!</source>
        <translation>没有录音队列！</translation>
    </message>
    <message>
        <source>this shouldn't happen. contact </source>
        <translation>这种情况本不应发生。请联系 </translation>
    </message>
</context>
</TS>

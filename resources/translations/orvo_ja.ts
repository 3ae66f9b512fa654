<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en">
<context>
    <name>Orvo</name>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;New Recorder</source>
        <translation>新規レコーダー(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>開く(&amp;O)…</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>最近使ったファイル(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>インポート(&amp;I)…</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>名前を付けて保存(&amp;A)…</translation>
    </message>
    <message>
        <source>Export Rin&amp;gtone…</source>
        <translation>着信音をエクスポート(&amp;G)…</translation>
    </message>
    <message>
        <source>Export &amp;Waveform Picture…</source>
        <translation>波形の画像をエクスポート(&amp;W)…</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>閉じる(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>編集(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>元に戻す(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>やり直す(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>元に戻す(&amp;U): %1</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>やり直す(&amp;R): %1</translation>
    </message>
    <message>
        <source>Remove After Marker</source>
        <translation>マーカーより後を削除</translation>
    </message>
    <message>
        <source>Remove Before Marker</source>
        <translation>マーカーより前を削除</translation>
    </message>
    <message>
        <source>Reverse Audio</source>
        <translation>オーディオを前後反転</translation>
    </message>
    <message>
        <source>&amp;Transport</source>
        <translation>トランスポート(&amp;T)</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>録音</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>再生</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>一時停止</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>停止</translation>
    </message>
    <message>
        <source>To Start</source>
        <translation>先頭へ</translation>
    </message>
    <message>
        <source>To End</source>
        <translation>末尾へ</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>スペース</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Return</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>表示(&amp;V)</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>スペクトラム</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>ヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>Remove &amp;After Marker</source>
        <translation>マーカーより後を削除(&amp;A)</translation>
    </message>
    <message>
        <source>Remove &amp;Before Marker</source>
        <translation>マーカーより前を削除(&amp;B)</translation>
    </message>
    <message>
        <source>Re&amp;verse Audio</source>
        <translation>オーディオを前後反転(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;About Orvo</source>
        <translation>Orvo について(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>録音(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>再生(&amp;P)</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>停止(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;To Start</source>
        <translation>先頭へ(&amp;T)</translation>
    </message>
    <message>
        <source>To &amp;End</source>
        <translation>末尾へ(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Spectrum</source>
        <translation>スペクトラム(&amp;S)</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>開く(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>インポート(&amp;I)</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>置き換え(&amp;R)</translation>
    </message>
    <message>
        <source>Nothing has been reported.</source>
        <translation>報告はありません。</translation>
    </message>
    <message>
        <source>Recording %1</source>
        <translation>録音 %1</translation>
    </message>
    <message>
        <source>There is no file %1.</source>
        <translation>ファイル%1はありません。</translation>
    </message>
    <message>
        <source>There is no file “%1”.</source>
        <translation>ファイル「%1」はありません。</translation>
    </message>
    <message>
        <source>You may not write in the folder %1. Choose another.</source>
        <translation>フォルダー%1に書き込む権限がありません。別のフォルダーを選んでください。</translation>
    </message>
    <message>
        <source>&amp;Documentation</source>
        <translation>ドキュメント(&amp;D)</translation>
    </message>
    <message>
        <source>D&amp;iagnostics</source>
        <translation>診断(&amp;I)</translation>
    </message>
    <message>
        <source>About Orvo</source>
        <translation>Orvo について</translation>
    </message>
    <message>
        <source>Orvo</source>
        <translation>Orvo</translation>
    </message>
    <message>
        <source>Unnamed</source>
        <translation>名称未設定</translation>
    </message>
    <message>
        <source>&amp;Recovered Recordings…</source>
        <translation>復元された録音(&amp;R)…</translation>
    </message>
    <message>
        <source>Recovered Recordings</source>
        <translation>復元された録音</translation>
    </message>
    <message>
        <source>Orvo ended unexpectedly.</source>
        <translation>Orvo が予期せず終了しました。</translation>
    </message>
    <message>
        <source>Recordings kept: %1</source>
        <translation>保持された録音: %1</translation>
    </message>
    <message>
        <source>Each recording opens in a window of its own. It is kept until you save or discard it.</source>
        <translation>録音はそれぞれ別のウィンドウで開きます。保存するか破棄するまで保持されます。</translation>
    </message>
    <message>
        <source>There are no recovered recordings.</source>
        <translation>復元された録音はありません。</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>日時</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>長さ</translation>
    </message>
    <message>
        <source>State</source>
        <translation>状態</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>完全</translation>
    </message>
    <message>
        <source>Damaged</source>
        <translation>破損</translation>
    </message>
    <message>
        <source>Still being written</source>
        <translation>書き込み中</translation>
    </message>
    <message>
        <source>Waiting for room on the disk</source>
        <translation>ディスクの空きを待っています</translation>
    </message>
    <message>
        <source>&amp;Later</source>
        <translation>後で(&amp;L)</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>削除(&amp;D)</translation>
    </message>
    <message>
        <source>Delete for good?</source>
        <translation>完全に削除しますか？</translation>
    </message>
    <message>
        <source>Recordings to be deleted: %1. This cannot be undone.</source>
        <translation>削除する録音: %1。この操作は取り消せません。</translation>
    </message>
    <message>
        <source>Recovered %1</source>
        <translation>復元 %1</translation>
    </message>
    <message>
        <source>%1 could not be deleted</source>
        <translation>%1を削除できませんでした</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 時間 %2 分</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1 分 %2 秒</translation>
    </message>
    <message>
        <source>Orvo Diagnostics</source>
        <translation>Orvo の診断</translation>
    </message>
    <message>
        <source>Orvo %1

An audio recorder and simple editor.</source>
        <translation>Orvo %1

オーディオレコーダー兼シンプルなエディターです。</translation>
    </message>
    <message>
        <source>Usage: orvo [OPTION…] [--] [FILE…]</source>
        <translation>使い方: orvo [OPTION…] [--] [FILE…]</translation>
    </message>
    <message>
        <source>Orvo records from the default sound input, shows the growing waveform, and plays it back. Each file opens in a window of its own. Without a file, an empty recorder opens.</source>
        <translation>Orvo はデフォルトのサウンド入力から録音し、伸びていく波形を表示し、再生します。ファイルはそれぞれ別のウィンドウで開きます。ファイルがなければ、空のレコーダーが開きます。</translation>
    </message>
    <message>
        <source>Arguments:</source>
        <translation>引数:</translation>
    </message>
    <message>
        <source>A path or a file:// address. Orvo opens caf, aif, aiff, wav, mp3, mp4, m4a, m4r and aac.</source>
        <translation>パスまたは file:// で始まるアドレス。Orvo は caf、aif、aiff、wav、mp3、mp4、m4a、m4r、aac を開きます。</translation>
    </message>
    <message>
        <source>Ends the options. What follows is a file, even if it begins with a dash.</source>
        <translation>オプションの終わり。これより後は、ダッシュで始まるものもファイルです。</translation>
    </message>
    <message>
        <source>Prints this text.</source>
        <translation>この説明を表示します。</translation>
    </message>
    <message>
        <source>Prints the version.</source>
        <translation>バージョンを表示します。</translation>
    </message>
    <message>
        <source>These and the other options of Qt are passed on to Qt.</source>
        <translation>これらを含む Qt のオプションは Qt に渡されます。</translation>
    </message>
    <message>
        <source>Environment:</source>
        <translation>環境変数:</translation>
    </message>
    <message>
        <source>The language of the texts: English, German, French, Spanish, Japanese or Simplified Chinese.</source>
        <translation>表示に使う言語: 英語、ドイツ語、フランス語、スペイン語、日本語、簡体字中国語。</translation>
    </message>
    <message>
        <source>The directory in which open recordings are kept, 20 MB a minute. Otherwise /tmp, or /var/tmp if /tmp is in memory.</source>
        <translation>開いている録音を置くディレクトリ。1 分あたり 20 MB。なければ /tmp、/tmp がメモリ上にある場合は /var/tmp。</translation>
    </message>
    <message>
        <source>If Orvo ends unexpectedly, recordings that were not saved are kept in orvo/recovered below this directory. Otherwise below ~/.local/share.</source>
        <translation>Orvo が予期せず終了したとき、保存していない録音は、このディレクトリの orvo/recovered に残ります。なければ ~/.local/share の下です。</translation>
    </message>
    <message>
        <source>Exit status:</source>
        <translation>終了ステータス:</translation>
    </message>
    <message>
        <source>Orvo ended as asked.</source>
        <translation>Orvo は指示どおりに終了しました。</translation>
    </message>
    <message>
        <source>The help or the version could not be printed.</source>
        <translation>説明またはバージョンを表示できませんでした。</translation>
    </message>
    <message>
        <source>An option is unknown. Nothing was opened.</source>
        <translation>不明なオプションがあります。何も開かれませんでした。</translation>
    </message>
    <message>
        <source>orvo: unknown option: %1
Try orvo --help</source>
        <translation>orvo: 不明なオプション: %1
次を試してください: orvo --help</translation>
    </message>
    <message>
        <source>en/index.html</source>
        <translation>ja/index.html</translation>
    </message>
    <message>
        <source>%1 is missing. Install Orvo again.</source>
        <translation>%1 がありません。Orvo を再インストールしてください。</translation>
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
        <translation>再生マーカー</translation>
    </message>
    <message>
        <source>Level meter</source>
        <translation>レベルメーター</translation>
    </message>
    <message>
        <source>Position and length</source>
        <translation>位置と長さ</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>進行状況</translation>
    </message>
    <message>
        <source>Loading</source>
        <translation>読み込み中</translation>
    </message>
    <message>
        <source>Importing</source>
        <translation>インポート中</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>保存中</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>エクスポート中</translation>
    </message>
    <message>
        <source>Drawing the waveform</source>
        <translation>波形を描画中</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>OK(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>キャンセル(&amp;C)</translation>
    </message>
    <message>
        <source>Do&amp;n’t Save</source>
        <translation>保存しない(&amp;N)</translation>
    </message>
    <message>
        <source>Do you want to save the changes made to “%1”?</source>
        <translation>「%1」への変更を保存しますか？</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don’t save them.</source>
        <translation>保存しないと、変更内容は失われます。</translation>
    </message>
    <message>
        <source>The recording was paused.</source>
        <translation>録音は一時停止されました。</translation>
    </message>
    <message>
        <source>Record (R)</source>
        <translation>録音 (R)</translation>
    </message>
    <message>
        <source>Play (Space)</source>
        <translation>再生 (スペース)</translation>
    </message>
    <message>
        <source>To Start (Return)</source>
        <translation>先頭へ (Return)</translation>
    </message>
    <message>
        <source>Ends the recording (R)</source>
        <translation>録音を終了 (R)</translation>
    </message>
    <message>
        <source>Records at the end (R)</source>
        <translation>末尾に録音 (R)</translation>
    </message>
    <message>
        <source>Records from %1 over what is there (R)</source>
        <translation>%1 から上書き録音 (R)</translation>
    </message>
    <message>
        <source>Recording position</source>
        <translation>録音位置</translation>
    </message>
    <message>
        <source>Clipping</source>
        <translation>音割れ</translation>
    </message>
    <message>
        <source>Too loud: clipped at %1. Click to turn off.</source>
        <translation>音が大きすぎます: %1 で音割れしました。クリックで消灯します。</translation>
    </message>
    <message>
        <source>Quitting was cancelled</source>
        <translation>終了はキャンセルされました</translation>
    </message>
    <message>
        <source>A panel of “%1” is open. Answer it first, then quit again.</source>
        <translation>「%1」のダイアログが開いています。先に応答してから、もう一度終了してください。</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>開く</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>インポート</translation>
    </message>
    <message>
        <source>Import File</source>
        <translation>ファイルのインポート</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>名前を付けて保存</translation>
    </message>
    <message>
        <source>Save &amp;in:</source>
        <translation>保存先(&amp;I):</translation>
    </message>
    <message>
        <source>File &amp;type:</source>
        <translation>ファイルの種類(&amp;T):</translation>
    </message>
    <message>
        <source>File type</source>
        <translation>ファイルの種類</translation>
    </message>
    <message>
        <source>Audio Files</source>
        <translation>オーディオファイル</translation>
    </message>
    <message>
        <source>All Files</source>
        <translation>すべてのファイル</translation>
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
        <translation>着信音をエクスポート</translation>
    </message>
    <message>
        <source>A ringtone begins at the marker, or at the start when the marker is at the end, and lasts at most %1 seconds.</source>
        <translation>着信音はマーカーの位置（マーカーが末尾にあるときは先頭）から始まり、長さは最大 %1 秒です。</translation>
    </message>
    <message>
        <source>Export Waveform Picture</source>
        <translation>波形の画像をエクスポート</translation>
    </message>
    <message>
        <source>The page could not be opened</source>
        <translation>ページを開けませんでした</translation>
    </message>
    <message>
        <source>No program was found that opens %1.</source>
        <translation>%1 を開くプログラムが見つかりませんでした。</translation>
    </message>
    <message>
        <source>The recording was stopped</source>
        <translation>録音が停止されました</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

Everything recorded before is kept.</source>
        <translation>オーディオを一時ファイルに書き込めませんでした。%1

それまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>Playing was stopped</source>
        <translation>再生が停止されました</translation>
    </message>
    <message>
        <source>The audio could not be read from the temporary file. %1</source>
        <translation>一時ファイルからオーディオを読み取れませんでした。%1</translation>
    </message>
    <message>
        <source>%1 could not be loaded whole</source>
        <translation>%1 全体を読み込めませんでした</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

%2</source>
        <translation>オーディオを一時ファイルに書き込めませんでした。%1

%2</translation>
    </message>
    <message>
        <source>Nothing was imported.</source>
        <translation>何もインポートされませんでした。</translation>
    </message>
    <message>
        <source>Space for less than %1 minutes of recording is left in %2.</source>
        <translation>%2 の空き容量で録音できるのは残り %1 分未満です。</translation>
    </message>
    <message>
        <source>Space for less than a minute of recording is left in %1.</source>
        <translation>%1の空き容量で録音できるのは残り 1 分未満です。</translation>
    </message>
    <message>
        <source>%1 does not fit on the disk</source>
        <translation>%1はディスクに収まりません</translation>
    </message>
    <message>
        <source>It needs about %1, but the disk of the folder %2 has only %3 left.</source>
        <translation>約 %1 必要ですが、フォルダー %2 のディスクには %3 しか空きがありません。</translation>
    </message>
    <message>
        <source>Orvo is recording</source>
        <translation>Orvo が録音中です</translation>
    </message>
    <message>
        <source>Goes in at the end.</source>
        <translation>末尾に入ります。</translation>
    </message>
    <message>
        <source>Goes in at %1.</source>
        <translation>%1 に入ります。</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces %2.</source>
        <translation>%1 に入り、%2 を置き換えます。</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces about %2.</source>
        <translation>%1 に入り、およそ %2 を置き換えます。</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 秒</translation>
    </message>
    <message>
        <source>Everything loaded before is kept.</source>
        <translation>それまでに読み込んだ内容はすべて残っています。</translation>
    </message>
    <message>
        <source>The recording is too long for a file of the type %1. Choose another type.</source>
        <translation>録音が長すぎるため、%1 形式のファイルには保存できません。別の種類を選んでください。</translation>
    </message>
    <message>
        <source>An AAC file cannot be empty. Record something first.</source>
        <translation>AAC ファイルを空にすることはできません。まず何か録音してください。</translation>
    </message>
    <message>
        <source>%1 seconds of the recording could not be read.</source>
        <translation>録音のうち %1 秒分を読み取れませんでした。</translation>
    </message>
    <message>
        <source>They are silent in the file.</source>
        <translation>その部分はファイル内で無音になっています。</translation>
    </message>
    <message>
        <source>The file that was there was kept. Save under another name to get the rest.</source>
        <translation>元のファイルはそのまま残っています。残りの部分を保存するには、別の名前で保存してください。</translation>
    </message>
    <message>
        <source>The file was saved but could not be opened</source>
        <translation>ファイルは保存されましたが、開けませんでした</translation>
    </message>
    <message>
        <source>%1 could not be saved</source>
        <translation>%1を保存できませんでした</translation>
    </message>
    <message>
        <source>%1 was saved with gaps</source>
        <translation>%1は一部が欠けた状態で保存されました</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>「%1」</translation>
    </message>
    <message>
        <source>You do not have the permission for it.</source>
        <translation>必要な権限がありません。</translation>
    </message>
    <message>
        <source>The disk is full.</source>
        <translation>ディスクがいっぱいです。</translation>
    </message>
    <message>
        <source>You have used up your share of the disk.</source>
        <translation>ディスクの割り当て容量を使い切りました。</translation>
    </message>
    <message>
        <source>The file would become larger than the disk allows.</source>
        <translation>ファイルがディスクで許されるサイズを超えてしまいます。</translation>
    </message>
    <message>
        <source>The disk can only be read.</source>
        <translation>ディスクは読み取り専用です。</translation>
    </message>
    <message>
        <source>The folder or the file is not there any more.</source>
        <translation>フォルダーまたはファイルがなくなっています。</translation>
    </message>
    <message>
        <source>“%1” already exists. Do you want to replace it?</source>
        <translation>「%1」はすでに存在します。置き換えますか？</translation>
    </message>
    <message>
        <source>Another program has changed the folder or the file meanwhile.</source>
        <translation>その間に別のプログラムがフォルダーまたはファイルを変更しました。</translation>
    </message>
    <message>
        <source>&amp;Look in:</source>
        <translation>場所(&amp;L):</translation>
    </message>
    <message>
        <source>File &amp;name:</source>
        <translation>ファイル名(&amp;N):</translation>
    </message>
    <message>
        <source>Files of &amp;type:</source>
        <translation>表示する種類(&amp;T):</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>サイズ</translation>
    </message>
    <message>
        <source>Date modified</source>
        <translation>更新日時</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>Parent Folder</source>
        <translation>親フォルダー</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>新しいフォルダー</translation>
    </message>
    <message>
        <source>Name of the new folder:</source>
        <translation>新しいフォルダーの名前:</translation>
    </message>
    <message>
        <source>Waiting for the folder to answer…</source>
        <translation>フォルダーの応答を待っています…</translation>
    </message>
    <message>
        <source>The files cannot be shown</source>
        <translation>ファイルを表示できません</translation>
    </message>
    <message>
        <source>There is no room for another window</source>
        <translation>これ以上ウィンドウを開けません</translation>
    </message>
    <message>
        <source>Too many files are open. Close some windows, then try again.</source>
        <translation>開いているファイルが多すぎます。いくつかのウィンドウを閉じてから、もう一度お試しください。</translation>
    </message>
    <message>
        <source>%1 can only be overwritten</source>
        <translation>%1は上書きすることしかできません</translation>
    </message>
    <message>
        <source>You may not make files in its folder. The old file is copied to the temporary directory first. The copy is kept if writing fails.</source>
        <translation>このフォルダーにファイルを作成する権限がありません。元のファイルは先に一時ディレクトリにコピーされます。書き込みに失敗した場合、そのコピーは残ります。</translation>
    </message>
    <message>
        <source>&amp;Overwrite</source>
        <translation>上書き(&amp;O)</translation>
    </message>
    <message>
        <source>There is no such folder.</source>
        <translation>そのフォルダーはありません。</translation>
    </message>
    <message>
        <source>It is not a folder.</source>
        <translation>それはフォルダーではありません。</translation>
    </message>
    <message>
        <source>The temporary directory “%1” cannot be used. %2</source>
        <translation>一時ディレクトリ「%1」は使えません。%2</translation>
    </message>
    <message>
        <source>title</source>
        <translation>タイトル</translation>
    </message>
    <message>
        <source>artist</source>
        <translation>アーティスト</translation>
    </message>
    <message>
        <source>album</source>
        <translation>アルバム</translation>
    </message>
    <message>
        <source>date</source>
        <translation>日付</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>コメント</translation>
    </message>
    <message>
        <source>genre</source>
        <translation>ジャンル</translation>
    </message>
    <message>
        <source>track</source>
        <translation>トラック番号</translation>
    </message>
    <message>
        <source>cover</source>
        <translation>カバー画像</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1、%2</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1と%2</translation>
    </message>
    <message>
        <source>%1 kHz</source>
        <translation>%1 kHz</translation>
    </message>
    <message>
        <source>%1 bits</source>
        <translation>%1ビット</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1チャンネル</translation>
    </message>
    <message>
        <source>lossless sound</source>
        <translation>可逆圧縮の音声</translation>
    </message>
    <message>
        <source>compressed sound (AAC)</source>
        <translation>非可逆圧縮の音声（AAC）</translation>
    </message>
    <message>
        <source>The old file has %1, the new one only has %2.</source>
        <translation>古いファイルは%1ですが、新しいファイルは%2になります。</translation>
    </message>
    <message>
        <source>16 bits, 44.1 kHz, stereo</source>
        <translation>16ビット、44.1 kHz、ステレオ</translation>
    </message>
    <message>
        <source>AAC with 256 kbit/s, 44.1 kHz, stereo</source>
        <translation>AAC 256 kbit/s、44.1 kHz、ステレオ</translation>
    </message>
    <message>
        <source>%1; keeps %2</source>
        <translation>%1。%2を残します</translation>
    </message>
    <message>
        <source>%1; leaves out the cover</source>
        <translation>%1。カバー画像は残りません</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>保存(&amp;S)</translation>
    </message>
    <message>
        <source>The file is damaged. What was in it is kept in %1.</source>
        <translation>ファイルが壊れています。元の内容は %1に残っています。</translation>
    </message>
    <message>
        <source>There is a folder of this name.</source>
        <translation>同じ名前のフォルダーがあります。</translation>
    </message>
    <message>
        <source>It is not an ordinary file.</source>
        <translation>通常のファイルではありません。</translation>
    </message>
    <message>
        <source>The disk could not be read or written.</source>
        <translation>ディスクの読み書きができませんでした。</translation>
    </message>
    <message>
        <source>The disk has been removed.</source>
        <translation>ディスクが取り外されました。</translation>
    </message>
    <message>
        <source>The name is too long.</source>
        <translation>名前が長すぎます。</translation>
    </message>
    <message>
        <source>The name is a link that leads back to itself.</source>
        <translation>名前が、自分自身を指すリンクになっています。</translation>
    </message>
    <message>
        <source>Too many files are open.</source>
        <translation>開いているファイルが多すぎます。</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>メモリが足りません。</translation>
    </message>
    <message>
        <source>The computer is too busy just now.</source>
        <translation>コンピューターが現在混み合っています。</translation>
    </message>
    <message>
        <source>Another program is using it.</source>
        <translation>別のプログラムが使用中です。</translation>
    </message>
    <message>
        <source>There is already a file or a folder of this name.</source>
        <translation>この名前のファイルまたはフォルダーがすでにあります。</translation>
    </message>
    <message>
        <source>The disk does not allow it.</source>
        <translation>このディスクではできません。</translation>
    </message>
    <message>
        <source>The disk does not answer.</source>
        <translation>ディスクが応答しません。</translation>
    </message>
    <message>
        <source>You are not allowed to read %1. Ask its owner, or change its permissions.</source>
        <translation>%1を読み取る権限がありません。所有者に問い合わせるか、アクセス権を変更してください。</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose a sound file inside it.</source>
        <translation>%1はフォルダーです。その中のオーディオファイルを選んでください。</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file, but a device or a connection to another program.</source>
        <translation>%1は通常のファイルではなく、デバイスまたは別のプログラムへの接続です。</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1は空です。</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long.</source>
        <translation>%1の名前またはパスが長すぎます。</translation>
    </message>
    <message>
        <source>There is no sound in %1.</source>
        <translation>%1には音声が含まれていません。</translation>
    </message>
    <message>
        <source>The sound in %1 is encoded in a way that cannot be read. Up to 8 channels and rates from 1,000 to 768,000 Hz can be.</source>
        <translation>%1の音声は、読み取れない形式でエンコードされています。対応しているのは 8 チャンネルまで、サンプリング周波数 1,000～768,000 Hz です。</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error.</source>
        <translation>%1が保存されているメディアでエラーが発生しました。</translation>
    </message>
    <message>
        <source>%1 could not be opened, because too many files are open. Close some windows first.</source>
        <translation>開いているファイルが多すぎるため、%1を開けませんでした。先にいくつかのウィンドウを閉じてください。</translation>
    </message>
    <message>
        <source>There was not enough memory to read %1.</source>
        <translation>メモリが足りないため、%1を読み取れませんでした。</translation>
    </message>
    <message>
        <source>%1 cannot be read: FFmpeg’s libraries are missing on this computer.</source>
        <translation>%1を読み取れません。このコンピューターに FFmpeg のライブラリがありません。</translation>
    </message>
    <message>
        <source>%1 is not a sound file that can be read, or it is damaged.</source>
        <translation>%1は読み取れるオーディオファイルではないか、壊れています。</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error. What could be read before it is kept.</source>
        <translation>%1が保存されているメディアでエラーが発生しました。それまでに読み取れた部分は残っています。</translation>
    </message>
    <message>
        <source>There was not enough memory to read all of %1. What could be read is kept.</source>
        <translation>メモリが足りないため、%1 全体を読み取れませんでした。読み取れた部分は残っています。</translation>
    </message>
    <message>
        <source>From some place on the sound in %1 is encoded in a way that cannot be read. What came before it is kept.</source>
        <translation>%1の音声は、途中から読み取れない形式でエンコードされています。それより前の部分は残っています。</translation>
    </message>
    <message>
        <source>%1 can no longer be read. What could be read of it is kept.</source>
        <translation>%1を読み取れなくなりました。読み取れた部分は残っています。</translation>
    </message>
    <message>
        <source>%1 is damaged or was cut off. What could be read of it is kept.</source>
        <translation>%1は壊れているか、途中で切れています。読み取れた部分は残っています。</translation>
    </message>
    <message>
        <source>The folder in which %1 was to be written is not there. Choose another one.</source>
        <translation>%1の書き込み先のフォルダーがありません。別のフォルダーを選んでください。</translation>
    </message>
    <message>
        <source>You are not allowed to write %1. Choose another folder, or change the permissions.</source>
        <translation>%1を書き込む権限がありません。別のフォルダーを選ぶか、アクセス権を変更してください。</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose another name.</source>
        <translation>%1はフォルダーです。別の名前を選んでください。</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file. Choose another name.</source>
        <translation>%1は通常のファイルではありません。別の名前を選んでください。</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long. Choose a shorter one.</source>
        <translation>%1の名前またはパスが長すぎます。もっと短いものにしてください。</translation>
    </message>
    <message>
        <source>There is not enough room to write %1. Make room, or choose another disk.</source>
        <translation>%1を書き込むための空き容量が足りません。空き容量を増やすか、別のディスクを選んでください。</translation>
    </message>
    <message>
        <source>%1 would be larger than a file of its kind or on this disk may be. Choose another kind of file or another disk.</source>
        <translation>%1は、この種類のファイルまたはこのディスクで許されるサイズを超えてしまいます。別の種類のファイルか別のディスクを選んでください。</translation>
    </message>
    <message>
        <source>%1 could not be written, because too many files are open. Close some windows first.</source>
        <translation>開いているファイルが多すぎるため、%1を書き込めませんでした。先にいくつかのウィンドウを閉じてください。</translation>
    </message>
    <message>
        <source>There was not enough memory to write %1.</source>
        <translation>メモリが足りないため、%1を書き込めませんでした。</translation>
    </message>
    <message>
        <source>%1 cannot be written: FFmpeg’s libraries are missing on this computer.</source>
        <translation>%1を書き込めません。このコンピューターに FFmpeg のライブラリがありません。</translation>
    </message>
    <message>
        <source>%1 cannot be written as a file of this kind.</source>
        <translation>%1はこの種類のファイルとしては書き込めません。</translation>
    </message>
    <message>
        <source>The medium on which %1 was to be written reported an error. It may have been removed.</source>
        <translation>%1の書き込み先のメディアでエラーが発生しました。取り外された可能性があります。</translation>
    </message>
    <message>
        <source>File Format Error</source>
        <translation>ファイル形式のエラー</translation>
    </message>
    <message>
        <source>The file is of an unsupported format.</source>
        <translation>このファイル形式には対応していません。</translation>
    </message>
    <message>
        <source>Core Audio Error</source>
        <translation>Core Audio エラー</translation>
    </message>
    <message>
        <source>Core Audio returned the error: %s (%s)</source>
        <translation>Core Audio からエラーが返されました: %s (%s)</translation>
    </message>
    <message>
        <source>No sound input could be opened. Connect a microphone or another input, check that sound works on this computer, then press Record again. Everything recorded so far is kept.</source>
        <translation>サウンド入力を開けませんでした。マイクなどの入力を接続し、このコンピューターでサウンドが使えることを確かめてから、もう一度「録音」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>サウンド入力がなくなりました。取り外されたか、サウンドシステムが停止しました。録音は終了しました。入力を接続し直してから「録音」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>サウンド入力がなくなりました。取り外されたか、サウンドシステムが停止しました。接続し直してから「録音」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>サウンド入力「%1」がなくなりました。取り外されたか、サウンドシステムが停止しました。接続し直してから「録音」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>サウンド入力「%1」がなくなりました。取り外されたか、サウンドシステムが停止しました。録音は終了しました。入力を接続し直してから「録音」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>サウンド入力から何も届かなくなりました。止まっているか、サウンドシステムが応答していません。録音は終了しました。入力を確かめてから「録音」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input “%1”: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>サウンド入力「%1」から何も届かなくなりました。止まっているか、サウンドシステムが応答していません。録音は終了しました。入力を確かめてから「録音」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>The sound output stands still, or the sound system does not answer. Playback has ended. Check the output, then press Play. Everything recorded so far is kept.</source>
        <translation>サウンド出力が止まっているか、サウンドシステムが応答していません。再生は終了しました。出力を確かめてから「再生」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>Recording from the default input</source>
        <translation>デフォルトの入力から録音中</translation>
    </message>
    <message>
        <source>Recording from %1</source>
        <translation>%1から録音中</translation>
    </message>
    <message>
        <source>Recording has been paused.</source>
        <translation>録音を一時停止しました。</translation>
    </message>
    <message>
        <source>No microphone</source>
        <translation>マイクがありません</translation>
    </message>
    <message>
        <source>No microphone: recording what this computer plays</source>
        <translation>マイクがありません。このコンピューターの再生音を録音しています</translation>
    </message>
    <message>
        <source>Nothing is coming in</source>
        <translation>音が入ってきません</translation>
    </message>
    <message>
        <source>This computer is running out of memory</source>
        <translation>このコンピューターのメモリが不足しています</translation>
    </message>
    <message>
        <source>%1 s were lost at %2</source>
        <translation>%2で%1秒分が失われました</translation>
    </message>
    <message>
        <source>Lost in this recording: %1 s, first at %2</source>
        <translation>この録音で失われた長さ：%1秒、最初は%2</translation>
    </message>
    <message>
        <source>Lost sound</source>
        <translation>失われた音</translation>
    </message>
    <message>
        <source>The system allows no further thread. Close some windows or other programs, then try again. Everything recorded so far is kept.</source>
        <translation>システムがこれ以上スレッドを作成できません。いくつかのウィンドウまたはほかのプログラムを閉じてから、もう一度お試しください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>No sound output could be opened. Connect loudspeakers or headphones, check that sound works on this computer, then press Play again. Everything recorded so far is kept.</source>
        <translation>サウンド出力を開けませんでした。スピーカーまたはヘッドホンを接続し、このコンピューターでサウンドが使えることを確かめてから、もう一度「再生」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>The sound output has gone: it was unplugged, or the sound system stopped. Playback has ended. Connect the output again, then press Play. Everything recorded so far is kept.</source>
        <translation>サウンド出力がなくなりました。取り外されたか、サウンドシステムが停止しました。再生は終了しました。出力を接続し直してから「再生」を押してください。これまでに録音した内容はすべて残っています。</translation>
    </message>
    <message>
        <source>no queue on record!</source>
        <translation>録音用のキューがありません！</translation>
    </message>
    <message>
        <source>this shouldn't happen. contact </source>
        <translation>これは起こらないはずのエラーです。連絡先: </translation>
    </message>
</context>
</TS>

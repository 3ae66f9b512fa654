<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>Orvo</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;New Recorder</source>
        <translation>&amp;Neuer Rekorder</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen&#xa0;…</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importieren&#xa0;…</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>Speichern &amp;unter&#xa0;…</translation>
    </message>
    <message>
        <source>Export Rin&amp;gtone…</source>
        <translation>&amp;Klingelton exportieren&#xa0;…</translation>
    </message>
    <message>
        <source>Export &amp;Waveform Picture…</source>
        <translation>&amp;Wellenform als Bild exportieren&#xa0;…</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederherstellen</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Wiederherstellen: %1</translation>
    </message>
    <message>
        <source>Remove After Marker</source>
        <translation>Hinter dem Marker entfernen</translation>
    </message>
    <message>
        <source>Remove Before Marker</source>
        <translation>Vor dem Marker entfernen</translation>
    </message>
    <message>
        <source>Reverse Audio</source>
        <translation>Audio umkehren</translation>
    </message>
    <message>
        <source>&amp;Transport</source>
        <translation>&amp;Transport</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>To Start</source>
        <translation>Zum Anfang</translation>
    </message>
    <message>
        <source>To End</source>
        <translation>Zum Ende</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Eingabetaste</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>Spektrum</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Remove &amp;After Marker</source>
        <translation>&amp;Hinter dem Marker entfernen</translation>
    </message>
    <message>
        <source>Remove &amp;Before Marker</source>
        <translation>&amp;Vor dem Marker entfernen</translation>
    </message>
    <message>
        <source>Re&amp;verse Audio</source>
        <translation>Audio &amp;umkehren</translation>
    </message>
    <message>
        <source>&amp;About Orvo</source>
        <translation>Ü&amp;ber Orvo</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>&amp;Aufnahme</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>&amp;Wiedergabe</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Stopp</translation>
    </message>
    <message>
        <source>&amp;To Start</source>
        <translation>Zum An&amp;fang</translation>
    </message>
    <message>
        <source>To &amp;End</source>
        <translation>Zum &amp;Ende</translation>
    </message>
    <message>
        <source>&amp;Spectrum</source>
        <translation>&amp;Spektrum</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>Ö&amp;ffnen</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>I&amp;mportieren</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>&amp;Ersetzen</translation>
    </message>
    <message>
        <source>Nothing has been reported.</source>
        <translation>Es liegen keine Meldungen vor.</translation>
    </message>
    <message>
        <source>Recording %1</source>
        <translation>Aufnahme %1</translation>
    </message>
    <message>
        <source>There is no file %1.</source>
        <translation>Es gibt keine Datei %1.</translation>
    </message>
    <message>
        <source>There is no file “%1”.</source>
        <translation>Es gibt keine Datei „%1“.</translation>
    </message>
    <message>
        <source>You may not write in the folder %1. Choose another.</source>
        <translation>Sie dürfen im Ordner %1 nicht schreiben. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>&amp;Documentation</source>
        <translation>&amp;Dokumentation</translation>
    </message>
    <message>
        <source>D&amp;iagnostics</source>
        <translation>Di&amp;agnose</translation>
    </message>
    <message>
        <source>About Orvo</source>
        <translation>Über Orvo</translation>
    </message>
    <message>
        <source>Orvo</source>
        <translation>Orvo</translation>
    </message>
    <message>
        <source>Unnamed</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>&amp;Recovered Recordings…</source>
        <translation>&amp;Gerettete Aufnahmen&#xa0;…</translation>
    </message>
    <message>
        <source>Recovered Recordings</source>
        <translation>Gerettete Aufnahmen</translation>
    </message>
    <message>
        <source>Orvo ended unexpectedly.</source>
        <translation>Orvo wurde unerwartet beendet.</translation>
    </message>
    <message>
        <source>Recordings kept: %1</source>
        <translation>Erhaltene Aufnahmen: %1</translation>
    </message>
    <message>
        <source>Each recording opens in a window of its own. It is kept until you save or discard it.</source>
        <translation>Jede Aufnahme wird in einem eigenen Fenster geöffnet. Sie bleibt erhalten, bis Sie sie speichern oder verwerfen.</translation>
    </message>
    <message>
        <source>There are no recovered recordings.</source>
        <translation>Es gibt keine geretteten Aufnahmen.</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Zustand</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>Vollständig</translation>
    </message>
    <message>
        <source>Damaged</source>
        <translation>Beschädigt</translation>
    </message>
    <message>
        <source>Still being written</source>
        <translation>Wird noch geschrieben</translation>
    </message>
    <message>
        <source>Waiting for room on the disk</source>
        <translation>Wartet auf Platz auf dem Datenträger</translation>
    </message>
    <message>
        <source>&amp;Later</source>
        <translation>S&amp;päter</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Delete for good?</source>
        <translation>Endgültig löschen?</translation>
    </message>
    <message>
        <source>Recordings to be deleted: %1. This cannot be undone.</source>
        <translation>Zu löschende Aufnahmen: %1. Das lässt sich nicht rückgängig machen.</translation>
    </message>
    <message>
        <source>Recovered %1</source>
        <translation>Gerettet %1</translation>
    </message>
    <message>
        <source>%1 could not be deleted</source>
        <translation>%1 konnte nicht gelöscht werden</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 h %2 min</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1 min %2 s</translation>
    </message>
    <message>
        <source>Orvo Diagnostics</source>
        <translation>Orvo – Diagnose</translation>
    </message>
    <message>
        <source>Orvo %1

An audio recorder and simple editor.</source>
        <translation>Orvo %1

Ein Audiorekorder mit einfachem Editor.</translation>
    </message>
    <message>
        <source>Usage: orvo [OPTION…] [--] [FILE…]</source>
        <translation>Aufruf: orvo [OPTION&#xa0;…] [--] [FILE&#xa0;…]</translation>
    </message>
    <message>
        <source>Orvo records from the default sound input, shows the growing waveform, and plays it back. Each file opens in a window of its own. Without a file, an empty recorder opens.</source>
        <translation>Orvo nimmt vom Standardeingang auf, zeigt die wachsende Wellenform und gibt sie wieder. Jede Datei öffnet sich in einem eigenen Fenster. Ohne Datei öffnet sich ein leerer Rekorder.</translation>
    </message>
    <message>
        <source>Arguments:</source>
        <translation>Argumente:</translation>
    </message>
    <message>
        <source>A path or a file:// address. Orvo opens caf, aif, aiff, wav, mp3, mp4, m4a, m4r and aac.</source>
        <translation>Ein Pfad oder eine Adresse mit file://. Orvo öffnet caf, aif, aiff, wav, mp3, mp4, m4a, m4r und aac.</translation>
    </message>
    <message>
        <source>Ends the options. What follows is a file, even if it begins with a dash.</source>
        <translation>Beendet die Optionen. Was folgt, ist eine Datei, auch wenn es mit einem Strich beginnt.</translation>
    </message>
    <message>
        <source>Prints this text.</source>
        <translation>Gibt diesen Text aus.</translation>
    </message>
    <message>
        <source>Prints the version.</source>
        <translation>Gibt die Version aus.</translation>
    </message>
    <message>
        <source>These and the other options of Qt are passed on to Qt.</source>
        <translation>Diese und die anderen Optionen von Qt werden an Qt weitergegeben.</translation>
    </message>
    <message>
        <source>Environment:</source>
        <translation>Umgebung:</translation>
    </message>
    <message>
        <source>The language of the texts: English, German, French, Spanish, Japanese or Simplified Chinese.</source>
        <translation>Die Sprache der Texte: Englisch, Deutsch, Französisch, Spanisch, Japanisch oder vereinfachtes Chinesisch.</translation>
    </message>
    <message>
        <source>The directory in which open recordings are kept, 20 MB a minute. Otherwise /tmp, or /var/tmp if /tmp is in memory.</source>
        <translation>Das Verzeichnis, in dem offene Aufnahmen liegen, 20 MB in der Minute. Sonst /tmp, oder /var/tmp, wenn /tmp im Arbeitsspeicher liegt.</translation>
    </message>
    <message>
        <source>If Orvo ends unexpectedly, recordings that were not saved are kept in orvo/recovered below this directory. Otherwise below ~/.local/share.</source>
        <translation>Wird Orvo unerwartet beendet, so werden nicht gespeicherte Aufnahmen in orvo/recovered unter diesem Verzeichnis aufbewahrt. Sonst unter ~/.local/share.</translation>
    </message>
    <message>
        <source>Exit status:</source>
        <translation>Rückgabewert:</translation>
    </message>
    <message>
        <source>Orvo ended as asked.</source>
        <translation>Orvo wurde wie gewünscht beendet.</translation>
    </message>
    <message>
        <source>The help or the version could not be printed.</source>
        <translation>Die Hilfe oder die Version konnte nicht ausgegeben werden.</translation>
    </message>
    <message>
        <source>An option is unknown. Nothing was opened.</source>
        <translation>Eine Option ist unbekannt. Es wurde nichts geöffnet.</translation>
    </message>
    <message>
        <source>orvo: unknown option: %1
Try orvo --help</source>
        <translation>orvo: unbekannte Option: %1
Versuchen Sie orvo --help</translation>
    </message>
    <message>
        <source>en/index.html</source>
        <translation>de/index.html</translation>
    </message>
    <message>
        <source>%1 is missing. Install Orvo again.</source>
        <translation>%1 fehlt. Installieren Sie Orvo neu.</translation>
    </message>
    <message>
        <source>https://orvo.example/</source>
        <translation>https://orvo.example/</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Wellenform</translation>
    </message>
    <message>
        <source>Playback marker</source>
        <translation>Wiedergabemarker</translation>
    </message>
    <message>
        <source>Level meter</source>
        <translation>Pegelanzeige</translation>
    </message>
    <message>
        <source>Position and length</source>
        <translation>Position und Länge</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Loading</source>
        <translation>Wird geladen</translation>
    </message>
    <message>
        <source>Importing</source>
        <translation>Wird importiert</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Wird gespeichert</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>Wird exportiert</translation>
    </message>
    <message>
        <source>Drawing the waveform</source>
        <translation>Wellenform wird gezeichnet</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;OK</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>Do&amp;n’t Save</source>
        <translation>&amp;Nicht speichern</translation>
    </message>
    <message>
        <source>Do you want to save the changes made to “%1”?</source>
        <translation>Möchten Sie die Änderungen an „%1“ speichern?</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don’t save them.</source>
        <translation>Wenn Sie nicht speichern, gehen Ihre Änderungen verloren.</translation>
    </message>
    <message>
        <source>The recording was paused.</source>
        <translation>Die Aufnahme wurde angehalten.</translation>
    </message>
    <message>
        <source>Record (R)</source>
        <translation>Aufnahme (R)</translation>
    </message>
    <message>
        <source>Play (Space)</source>
        <translation>Wiedergabe (Leertaste)</translation>
    </message>
    <message>
        <source>To Start (Return)</source>
        <translation>Zum Anfang (Eingabetaste)</translation>
    </message>
    <message>
        <source>Ends the recording (R)</source>
        <translation>Beendet die Aufnahme (R)</translation>
    </message>
    <message>
        <source>Records at the end (R)</source>
        <translation>Nimmt am Ende auf (R)</translation>
    </message>
    <message>
        <source>Records from %1 over what is there (R)</source>
        <translation>Nimmt ab %1 über das Vorhandene auf (R)</translation>
    </message>
    <message>
        <source>Recording position</source>
        <translation>Aufnahmeposition</translation>
    </message>
    <message>
        <source>Clipping</source>
        <translation>Übersteuerung</translation>
    </message>
    <message>
        <source>Too loud: clipped at %1. Click to turn off.</source>
        <translation>Zu laut: übersteuert bei %1. Zum Ausschalten klicken.</translation>
    </message>
    <message>
        <source>Quitting was cancelled</source>
        <translation>Das Beenden wurde abgebrochen</translation>
    </message>
    <message>
        <source>A panel of “%1” is open. Answer it first, then quit again.</source>
        <translation>Bei „%1“ ist ein Dialog offen. Beantworten Sie ihn zuerst und beenden Sie dann noch einmal.</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Importieren</translation>
    </message>
    <message>
        <source>Import File</source>
        <translation>Datei importieren</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Speichern unter</translation>
    </message>
    <message>
        <source>Save &amp;in:</source>
        <translation>Speichern &amp;in:</translation>
    </message>
    <message>
        <source>File &amp;type:</source>
        <translation>Datei&amp;typ:</translation>
    </message>
    <message>
        <source>File type</source>
        <translation>Dateityp</translation>
    </message>
    <message>
        <source>Audio Files</source>
        <translation>Audiodateien</translation>
    </message>
    <message>
        <source>All Files</source>
        <translation>Alle Dateien</translation>
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
        <translation>Klingelton exportieren</translation>
    </message>
    <message>
        <source>A ringtone begins at the marker, or at the start when the marker is at the end, and lasts at most %1 seconds.</source>
        <translation>Ein Klingelton beginnt am Marker oder, wenn der Marker am Ende steht, am Anfang und dauert höchstens %1&#xa0;Sekunden.</translation>
    </message>
    <message>
        <source>Export Waveform Picture</source>
        <translation>Wellenform als Bild exportieren</translation>
    </message>
    <message>
        <source>The page could not be opened</source>
        <translation>Die Seite konnte nicht geöffnet werden</translation>
    </message>
    <message>
        <source>No program was found that opens %1.</source>
        <translation>Es wurde kein Programm gefunden, das %1 öffnet.</translation>
    </message>
    <message>
        <source>The recording was stopped</source>
        <translation>Die Aufnahme wurde beendet</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

Everything recorded before is kept.</source>
        <translation>Das Audiomaterial konnte nicht in die temporäre Datei geschrieben werden. %1

Alles zuvor Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>Playing was stopped</source>
        <translation>Die Wiedergabe wurde beendet</translation>
    </message>
    <message>
        <source>The audio could not be read from the temporary file. %1</source>
        <translation>Das Audiomaterial konnte nicht aus der temporären Datei gelesen werden. %1</translation>
    </message>
    <message>
        <source>%1 could not be loaded whole</source>
        <translation>%1 konnte nicht vollständig geladen werden</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

%2</source>
        <translation>Das Audiomaterial konnte nicht in die temporäre Datei geschrieben werden. %1

%2</translation>
    </message>
    <message>
        <source>Nothing was imported.</source>
        <translation>Es wurde nichts importiert.</translation>
    </message>
    <message>
        <source>Space for less than %1 minutes of recording is left in %2.</source>
        <translation>Der freie Platz in %2 reicht für weniger als %1&#xa0;Minuten Aufnahme.</translation>
    </message>
    <message>
        <source>Space for less than a minute of recording is left in %1.</source>
        <translation>Der freie Platz in %1 reicht für weniger als eine Minute Aufnahme.</translation>
    </message>
    <message>
        <source>%1 does not fit on the disk</source>
        <translation>%1 passt nicht auf den Datenträger</translation>
    </message>
    <message>
        <source>It needs about %1, but the disk of the folder %2 has only %3 left.</source>
        <translation>Dafür werden etwa %1 benötigt, aber auf dem Datenträger des Ordners %2 sind nur noch %3 frei.</translation>
    </message>
    <message>
        <source>Orvo is recording</source>
        <translation>Orvo nimmt auf</translation>
    </message>
    <message>
        <source>Goes in at the end.</source>
        <translation>Wird am Ende eingefügt.</translation>
    </message>
    <message>
        <source>Goes in at %1.</source>
        <translation>Wird bei %1 eingefügt.</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces %2.</source>
        <translation>Wird bei %1 eingefügt und ersetzt %2.</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces about %2.</source>
        <translation>Wird bei %1 eingefügt und ersetzt etwa %2.</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1&#xa0;s</translation>
    </message>
    <message>
        <source>Everything loaded before is kept.</source>
        <translation>Alles zuvor Geladene bleibt erhalten.</translation>
    </message>
    <message>
        <source>The recording is too long for a file of the type %1. Choose another type.</source>
        <translation>Die Aufnahme ist zu lang für eine Datei vom Typ %1. Wählen Sie einen anderen Typ.</translation>
    </message>
    <message>
        <source>An AAC file cannot be empty. Record something first.</source>
        <translation>Eine AAC-Datei kann nicht leer sein. Nehmen Sie zuerst etwas auf.</translation>
    </message>
    <message>
        <source>%1 seconds of the recording could not be read.</source>
        <translation>%1&#xa0;Sekunden der Aufnahme konnten nicht gelesen werden.</translation>
    </message>
    <message>
        <source>They are silent in the file.</source>
        <translation>Sie sind in der Datei stumm.</translation>
    </message>
    <message>
        <source>The file that was there was kept. Save under another name to get the rest.</source>
        <translation>Die vorhandene Datei blieb erhalten. Speichern Sie unter einem anderen Namen, um den Rest zu sichern.</translation>
    </message>
    <message>
        <source>The file was saved but could not be opened</source>
        <translation>Die Datei wurde gespeichert, konnte aber nicht geöffnet werden</translation>
    </message>
    <message>
        <source>%1 could not be saved</source>
        <translation>%1 konnte nicht gespeichert werden</translation>
    </message>
    <message>
        <source>%1 was saved with gaps</source>
        <translation>%1 wurde mit Lücken gespeichert</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>„%1“</translation>
    </message>
    <message>
        <source>You do not have the permission for it.</source>
        <translation>Ihnen fehlt die Berechtigung dazu.</translation>
    </message>
    <message>
        <source>The disk is full.</source>
        <translation>Der Datenträger ist voll.</translation>
    </message>
    <message>
        <source>You have used up your share of the disk.</source>
        <translation>Ihr Speicherplatzkontingent ist aufgebraucht.</translation>
    </message>
    <message>
        <source>The file would become larger than the disk allows.</source>
        <translation>Die Datei würde größer, als der Datenträger zulässt.</translation>
    </message>
    <message>
        <source>The disk can only be read.</source>
        <translation>Der Datenträger ist schreibgeschützt.</translation>
    </message>
    <message>
        <source>The folder or the file is not there any more.</source>
        <translation>Der Ordner oder die Datei ist nicht mehr vorhanden.</translation>
    </message>
    <message>
        <source>“%1” already exists. Do you want to replace it?</source>
        <translation>„%1“ gibt es schon. Soll die Datei ersetzt werden?</translation>
    </message>
    <message>
        <source>Another program has changed the folder or the file meanwhile.</source>
        <translation>Ein anderes Programm hat den Ordner oder die Datei inzwischen geändert.</translation>
    </message>
    <message>
        <source>&amp;Look in:</source>
        <translation>Suchen &amp;in:</translation>
    </message>
    <message>
        <source>File &amp;name:</source>
        <translation>Datei&amp;name:</translation>
    </message>
    <message>
        <source>Files of &amp;type:</source>
        <translation>Dateien vom &amp;Typ:</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Date modified</source>
        <translation>Änderungsdatum</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Parent Folder</source>
        <translation>Übergeordneter Ordner</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <source>Name of the new folder:</source>
        <translation>Name des neuen Ordners:</translation>
    </message>
    <message>
        <source>Waiting for the folder to answer…</source>
        <translation>Der Ordner antwortet noch nicht&#xa0;…</translation>
    </message>
    <message>
        <source>The files cannot be shown</source>
        <translation>Die Dateien können nicht angezeigt werden</translation>
    </message>
    <message>
        <source>There is no room for another window</source>
        <translation>Es ist kein weiteres Fenster möglich</translation>
    </message>
    <message>
        <source>Too many files are open. Close some windows, then try again.</source>
        <translation>Es sind zu viele Dateien geöffnet. Schließen Sie einige Fenster, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>%1 can only be overwritten</source>
        <translation>%1 kann nur überschrieben werden</translation>
    </message>
    <message>
        <source>You may not make files in its folder. The old file is copied to the temporary directory first. The copy is kept if writing fails.</source>
        <translation>Sie dürfen in diesem Ordner keine Dateien anlegen. Die alte Datei wird zuerst in das temporäre Verzeichnis kopiert. Die Kopie bleibt erhalten, wenn das Schreiben misslingt.</translation>
    </message>
    <message>
        <source>&amp;Overwrite</source>
        <translation>Ü&amp;berschreiben</translation>
    </message>
    <message>
        <source>There is no such folder.</source>
        <translation>Diesen Ordner gibt es nicht.</translation>
    </message>
    <message>
        <source>It is not a folder.</source>
        <translation>Das ist kein Ordner.</translation>
    </message>
    <message>
        <source>The temporary directory “%1” cannot be used. %2</source>
        <translation>Das temporäre Verzeichnis „%1“ kann nicht benutzt werden. %2</translation>
    </message>
    <message>
        <source>title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>artist</source>
        <translation>Interpret</translation>
    </message>
    <message>
        <source>album</source>
        <translation>Album</translation>
    </message>
    <message>
        <source>date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>Kommentar</translation>
    </message>
    <message>
        <source>genre</source>
        <translation>Genre</translation>
    </message>
    <message>
        <source>track</source>
        <translation>Titelnummer</translation>
    </message>
    <message>
        <source>cover</source>
        <translation>Titelbild</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 und %2</translation>
    </message>
    <message>
        <source>%1 kHz</source>
        <translation>%1 kHz</translation>
    </message>
    <message>
        <source>%1 bits</source>
        <translation>%1 Bit</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1 Kanäle</translation>
    </message>
    <message>
        <source>lossless sound</source>
        <translation>verlustfreien Ton</translation>
    </message>
    <message>
        <source>compressed sound (AAC)</source>
        <translation>komprimierten Ton (AAC)</translation>
    </message>
    <message>
        <source>The old file has %1, the new one only has %2.</source>
        <translation>Die alte Datei hat %1, die neue nur %2.</translation>
    </message>
    <message>
        <source>16 bits, 44.1 kHz, stereo</source>
        <translation>16 Bit, 44,1 kHz, Stereo</translation>
    </message>
    <message>
        <source>AAC with 256 kbit/s, 44.1 kHz, stereo</source>
        <translation>AAC mit 256 kbit/s, 44,1 kHz, Stereo</translation>
    </message>
    <message>
        <source>%1; keeps %2</source>
        <translation>%1; behält %2</translation>
    </message>
    <message>
        <source>%1; leaves out the cover</source>
        <translation>%1; ohne das Titelbild</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>The file is damaged. What was in it is kept in %1.</source>
        <translation>Die Datei ist beschädigt. Ihr bisheriger Inhalt liegt in %1.</translation>
    </message>
    <message>
        <source>There is a folder of this name.</source>
        <translation>Es gibt einen Ordner mit diesem Namen.</translation>
    </message>
    <message>
        <source>It is not an ordinary file.</source>
        <translation>Es ist keine gewöhnliche Datei.</translation>
    </message>
    <message>
        <source>The disk could not be read or written.</source>
        <translation>Der Datenträger konnte nicht gelesen oder beschrieben werden.</translation>
    </message>
    <message>
        <source>The disk has been removed.</source>
        <translation>Der Datenträger wurde entfernt.</translation>
    </message>
    <message>
        <source>The name is too long.</source>
        <translation>Der Name ist zu lang.</translation>
    </message>
    <message>
        <source>The name is a link that leads back to itself.</source>
        <translation>Der Name ist eine Verknüpfung, die auf sich selbst verweist.</translation>
    </message>
    <message>
        <source>Too many files are open.</source>
        <translation>Es sind zu viele Dateien geöffnet.</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>Der Arbeitsspeicher reicht nicht aus.</translation>
    </message>
    <message>
        <source>The computer is too busy just now.</source>
        <translation>Der Computer ist gerade zu beschäftigt.</translation>
    </message>
    <message>
        <source>Another program is using it.</source>
        <translation>Ein anderes Programm verwendet sie gerade.</translation>
    </message>
    <message>
        <source>There is already a file or a folder of this name.</source>
        <translation>Eine Datei oder ein Ordner mit diesem Namen ist schon vorhanden.</translation>
    </message>
    <message>
        <source>The disk does not allow it.</source>
        <translation>Der Datenträger lässt es nicht zu.</translation>
    </message>
    <message>
        <source>The disk does not answer.</source>
        <translation>Der Datenträger antwortet nicht.</translation>
    </message>
    <message>
        <source>You are not allowed to read %1. Ask its owner, or change its permissions.</source>
        <translation>Sie dürfen %1 nicht lesen. Fragen Sie den Eigentümer oder ändern Sie die Zugriffsrechte.</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose a sound file inside it.</source>
        <translation>%1 ist ein Ordner. Wählen Sie eine Audiodatei darin.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file, but a device or a connection to another program.</source>
        <translation>%1 ist keine gewöhnliche Datei, sondern ein Gerät oder eine Verbindung zu einem anderen Programm.</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 ist leer.</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long.</source>
        <translation>Der Name oder der Pfad von %1 ist zu lang.</translation>
    </message>
    <message>
        <source>There is no sound in %1.</source>
        <translation>%1 enthält keinen Ton.</translation>
    </message>
    <message>
        <source>The sound in %1 is encoded in a way that cannot be read. Up to 8 channels and rates from 1,000 to 768,000 Hz can be.</source>
        <translation>Der Ton in %1 ist so kodiert, dass er nicht gelesen werden kann. Möglich sind bis zu 8 Kanäle und Abtastraten von 1.000 bis 768.000&#xa0;Hz.</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error.</source>
        <translation>Der Datenträger, auf dem %1 gespeichert ist, hat einen Fehler gemeldet.</translation>
    </message>
    <message>
        <source>%1 could not be opened, because too many files are open. Close some windows first.</source>
        <translation>%1 konnte nicht geöffnet werden, weil zu viele Dateien geöffnet sind. Schließen Sie zuerst einige Fenster.</translation>
    </message>
    <message>
        <source>There was not enough memory to read %1.</source>
        <translation>Der Arbeitsspeicher reicht nicht aus, um %1 zu lesen.</translation>
    </message>
    <message>
        <source>%1 cannot be read: FFmpeg’s libraries are missing on this computer.</source>
        <translation>%1 kann nicht gelesen werden: Auf diesem Computer fehlen die Bibliotheken von FFmpeg.</translation>
    </message>
    <message>
        <source>%1 is not a sound file that can be read, or it is damaged.</source>
        <translation>%1 ist keine lesbare Audiodatei oder ist beschädigt.</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error. What could be read before it is kept.</source>
        <translation>Der Datenträger, auf dem %1 gespeichert ist, hat einen Fehler gemeldet. Was zuvor gelesen werden konnte, bleibt erhalten.</translation>
    </message>
    <message>
        <source>There was not enough memory to read all of %1. What could be read is kept.</source>
        <translation>Der Arbeitsspeicher reicht nicht aus, um %1 ganz zu lesen. Was gelesen werden konnte, bleibt erhalten.</translation>
    </message>
    <message>
        <source>From some place on the sound in %1 is encoded in a way that cannot be read. What came before it is kept.</source>
        <translation>Ab einer bestimmten Stelle ist der Ton in %1 so kodiert, dass er nicht gelesen werden kann. Was davor liegt, bleibt erhalten.</translation>
    </message>
    <message>
        <source>%1 can no longer be read. What could be read of it is kept.</source>
        <translation>%1 kann nicht mehr gelesen werden. Was gelesen werden konnte, bleibt erhalten.</translation>
    </message>
    <message>
        <source>%1 is damaged or was cut off. What could be read of it is kept.</source>
        <translation>%1 ist beschädigt oder unvollständig. Was gelesen werden konnte, bleibt erhalten.</translation>
    </message>
    <message>
        <source>The folder in which %1 was to be written is not there. Choose another one.</source>
        <translation>Der Ordner, in den %1 geschrieben werden sollte, ist nicht vorhanden. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>You are not allowed to write %1. Choose another folder, or change the permissions.</source>
        <translation>Sie dürfen %1 nicht schreiben. Wählen Sie einen anderen Ordner oder ändern Sie die Zugriffsrechte.</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose another name.</source>
        <translation>%1 ist ein Ordner. Wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file. Choose another name.</source>
        <translation>%1 ist keine gewöhnliche Datei. Wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long. Choose a shorter one.</source>
        <translation>Der Name oder der Pfad von %1 ist zu lang. Wählen Sie einen kürzeren.</translation>
    </message>
    <message>
        <source>There is not enough room to write %1. Make room, or choose another disk.</source>
        <translation>Der Speicherplatz reicht nicht aus, um %1 zu schreiben. Schaffen Sie Platz oder wählen Sie einen anderen Datenträger.</translation>
    </message>
    <message>
        <source>%1 would be larger than a file of its kind or on this disk may be. Choose another kind of file or another disk.</source>
        <translation>%1 würde größer, als eine Datei dieser Art oder auf diesem Datenträger sein darf. Wählen Sie eine andere Dateiart oder einen anderen Datenträger.</translation>
    </message>
    <message>
        <source>%1 could not be written, because too many files are open. Close some windows first.</source>
        <translation>%1 konnte nicht geschrieben werden, weil zu viele Dateien geöffnet sind. Schließen Sie zuerst einige Fenster.</translation>
    </message>
    <message>
        <source>There was not enough memory to write %1.</source>
        <translation>Der Arbeitsspeicher reicht nicht aus, um %1 zu schreiben.</translation>
    </message>
    <message>
        <source>%1 cannot be written: FFmpeg’s libraries are missing on this computer.</source>
        <translation>%1 kann nicht geschrieben werden: Auf diesem Computer fehlen die Bibliotheken von FFmpeg.</translation>
    </message>
    <message>
        <source>%1 cannot be written as a file of this kind.</source>
        <translation>%1 kann nicht als Datei dieser Art geschrieben werden.</translation>
    </message>
    <message>
        <source>The medium on which %1 was to be written reported an error. It may have been removed.</source>
        <translation>Der Datenträger, auf den %1 geschrieben werden sollte, hat einen Fehler gemeldet. Möglicherweise wurde er entfernt.</translation>
    </message>
    <message>
        <source>File Format Error</source>
        <translation>Fehler im Dateiformat</translation>
    </message>
    <message>
        <source>The file is of an unsupported format.</source>
        <translation>Das Dateiformat wird nicht unterstützt.</translation>
    </message>
    <message>
        <source>Core Audio Error</source>
        <translation>Core-Audio-Fehler</translation>
    </message>
    <message>
        <source>Core Audio returned the error: %s (%s)</source>
        <translation>Core Audio meldet den Fehler: %s (%s)</translation>
    </message>
    <message>
        <source>No sound input could be opened. Connect a microphone or another input, check that sound works on this computer, then press Record again. Everything recorded so far is kept.</source>
        <translation>Es konnte kein Audioeingang geöffnet werden. Schließen Sie ein Mikrofon oder einen anderen Eingang an, prüfen Sie, ob der Ton auf diesem Computer funktioniert, und drücken Sie dann noch einmal „Aufnahme“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>Der Audioeingang ist nicht mehr da: Er wurde getrennt, oder das Audiosystem wurde beendet. Die Aufnahme ist beendet. Schließen Sie den Eingang wieder an und drücken Sie dann „Aufnahme“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>Der Audioeingang ist nicht mehr da: Er wurde getrennt, oder das Audiosystem wurde beendet. Schließen Sie ihn wieder an, bevor Sie „Aufnahme“ drücken. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>Der Audioeingang „%1“ ist nicht mehr da: Er wurde getrennt, oder das Audiosystem wurde beendet. Schließen Sie ihn wieder an, bevor Sie „Aufnahme“ drücken. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>Der Audioeingang „%1“ ist nicht mehr da: Er wurde getrennt, oder das Audiosystem wurde beendet. Die Aufnahme ist beendet. Schließen Sie den Eingang wieder an und drücken Sie dann „Aufnahme“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>Vom Audioeingang kam nichts mehr: Er steht still, oder das Audiosystem antwortet nicht. Die Aufnahme ist beendet. Prüfen Sie den Eingang und drücken Sie dann „Aufnahme“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input “%1”: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>Vom Audioeingang „%1“ kam nichts mehr: Er steht still, oder das Audiosystem antwortet nicht. Die Aufnahme ist beendet. Prüfen Sie den Eingang und drücken Sie dann „Aufnahme“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>The sound output stands still, or the sound system does not answer. Playback has ended. Check the output, then press Play. Everything recorded so far is kept.</source>
        <translation>Der Audioausgang steht still, oder das Audiosystem antwortet nicht. Die Wiedergabe ist beendet. Prüfen Sie den Ausgang und drücken Sie dann „Wiedergabe“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>Recording from the default input</source>
        <translation>Aufnahme vom Standardeingang</translation>
    </message>
    <message>
        <source>Recording from %1</source>
        <translation>Aufnahme von %1</translation>
    </message>
    <message>
        <source>Recording has been paused.</source>
        <translation>Die Aufnahme wurde angehalten.</translation>
    </message>
    <message>
        <source>No microphone</source>
        <translation>Kein Mikrofon</translation>
    </message>
    <message>
        <source>No microphone: recording what this computer plays</source>
        <translation>Kein Mikrofon: Aufgenommen wird, was dieser Computer wiedergibt</translation>
    </message>
    <message>
        <source>Nothing is coming in</source>
        <translation>Es kommt kein Ton an</translation>
    </message>
    <message>
        <source>This computer is running out of memory</source>
        <translation>Der Arbeitsspeicher dieses Computers ist fast voll</translation>
    </message>
    <message>
        <source>%1 s were lost at %2</source>
        <translation>%1&#xa0;s gingen bei %2 verloren</translation>
    </message>
    <message>
        <source>Lost in this recording: %1 s, first at %2</source>
        <translation>In dieser Aufnahme verloren: %1&#xa0;s, zuerst bei %2</translation>
    </message>
    <message>
        <source>Lost sound</source>
        <translation>Verlorener Ton</translation>
    </message>
    <message>
        <source>The system allows no further thread. Close some windows or other programs, then try again. Everything recorded so far is kept.</source>
        <translation>Das System lässt keinen weiteren Thread zu. Schließen Sie einige Fenster oder andere Programme, und versuchen Sie es dann noch einmal. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>No sound output could be opened. Connect loudspeakers or headphones, check that sound works on this computer, then press Play again. Everything recorded so far is kept.</source>
        <translation>Es konnte kein Audioausgang geöffnet werden. Schließen Sie Lautsprecher oder Kopfhörer an, prüfen Sie, ob der Ton auf diesem Computer funktioniert, und drücken Sie dann noch einmal „Wiedergabe“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>The sound output has gone: it was unplugged, or the sound system stopped. Playback has ended. Connect the output again, then press Play. Everything recorded so far is kept.</source>
        <translation>Der Audioausgang ist nicht mehr da: Er wurde getrennt, oder das Audiosystem wurde beendet. Die Wiedergabe ist beendet. Schließen Sie den Ausgang wieder an und drücken Sie dann „Wiedergabe“. Alles bisher Aufgenommene bleibt erhalten.</translation>
    </message>
    <message>
        <source>no queue on record!</source>
        <translation>Keine Warteschlange für die Aufnahme!</translation>
    </message>
    <message>
        <source>this shouldn't happen. contact </source>
        <translation>Das sollte nicht vorkommen. Wenden Sie sich an </translation>
    </message>
</context>
</TS>

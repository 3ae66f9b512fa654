<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>Orvo</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;New Recorder</source>
        <translation>&amp;Nouvel enregistreur</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Ouvrir…</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Fichiers &amp;récents</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importer…</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>Enregistrer &amp;sous…</translation>
    </message>
    <message>
        <source>Export Rin&amp;gtone…</source>
        <translation>E&amp;xporter une sonnerie…</translation>
    </message>
    <message>
        <source>Export &amp;Waveform Picture…</source>
        <translation>Exporter l’image de la &amp;forme d’onde…</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>Fer&amp;mer</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>É&amp;dition</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Rétablir</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Annuler&#xa0;: %1</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Rétablir&#xa0;: %1</translation>
    </message>
    <message>
        <source>Remove After Marker</source>
        <translation>Supprimer après le marqueur</translation>
    </message>
    <message>
        <source>Remove Before Marker</source>
        <translation>Supprimer avant le marqueur</translation>
    </message>
    <message>
        <source>Reverse Audio</source>
        <translation>Inverser l’audio</translation>
    </message>
    <message>
        <source>&amp;Transport</source>
        <translation>&amp;Transport</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Enregistrement</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Lecture</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêt</translation>
    </message>
    <message>
        <source>To Start</source>
        <translation>Aller au début</translation>
    </message>
    <message>
        <source>To End</source>
        <translation>Aller à la fin</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Espace</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Entrée</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>Affic&amp;hage</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>Spectre</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Aid&amp;e</translation>
    </message>
    <message>
        <source>Remove &amp;After Marker</source>
        <translation>Supprimer a&amp;près le marqueur</translation>
    </message>
    <message>
        <source>Remove &amp;Before Marker</source>
        <translation>Supprimer a&amp;vant le marqueur</translation>
    </message>
    <message>
        <source>Re&amp;verse Audio</source>
        <translation>&amp;Inverser l’audio</translation>
    </message>
    <message>
        <source>&amp;About Orvo</source>
        <translation>À &amp;propos d’Orvo</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>&amp;Enregistrement</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>&amp;Lecture</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Arrêt</translation>
    </message>
    <message>
        <source>&amp;To Start</source>
        <translation>Aller au &amp;début</translation>
    </message>
    <message>
        <source>To &amp;End</source>
        <translation>Aller à la &amp;fin</translation>
    </message>
    <message>
        <source>&amp;Spectrum</source>
        <translation>&amp;Spectre</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>&amp;Ouvrir</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>&amp;Importer</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>&amp;Remplacer</translation>
    </message>
    <message>
        <source>Nothing has been reported.</source>
        <translation>Rien n’a été signalé.</translation>
    </message>
    <message>
        <source>Recording %1</source>
        <translation>Enregistrement %1</translation>
    </message>
    <message>
        <source>There is no file %1.</source>
        <translation>Il n’y a pas de fichier %1.</translation>
    </message>
    <message>
        <source>There is no file “%1”.</source>
        <translation>Il n’y a pas de fichier «&#xa0;%1&#xa0;».</translation>
    </message>
    <message>
        <source>You may not write in the folder %1. Choose another.</source>
        <translation>Vous n’avez pas le droit d’écrire dans le dossier %1. Choisissez-en un autre.</translation>
    </message>
    <message>
        <source>&amp;Documentation</source>
        <translation>&amp;Documentation</translation>
    </message>
    <message>
        <source>D&amp;iagnostics</source>
        <translation>D&amp;iagnostic</translation>
    </message>
    <message>
        <source>About Orvo</source>
        <translation>À propos d’Orvo</translation>
    </message>
    <message>
        <source>Orvo</source>
        <translation>Orvo</translation>
    </message>
    <message>
        <source>Unnamed</source>
        <translation>Sans titre</translation>
    </message>
    <message>
        <source>&amp;Recovered Recordings…</source>
        <translation>&amp;Enregistrements récupérés…</translation>
    </message>
    <message>
        <source>Recovered Recordings</source>
        <translation>Enregistrements récupérés</translation>
    </message>
    <message>
        <source>Orvo ended unexpectedly.</source>
        <translation>Orvo s’est arrêté de façon inattendue.</translation>
    </message>
    <message>
        <source>Recordings kept: %1</source>
        <translation>Enregistrements conservés&#xa0;: %1</translation>
    </message>
    <message>
        <source>Each recording opens in a window of its own. It is kept until you save or discard it.</source>
        <translation>Chaque enregistrement s’ouvre dans sa propre fenêtre. Il est conservé jusqu’à ce que vous l’enregistriez ou l’abandonniez.</translation>
    </message>
    <message>
        <source>There are no recovered recordings.</source>
        <translation>Il n’y a aucun enregistrement récupéré.</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Durée</translation>
    </message>
    <message>
        <source>State</source>
        <translation>État</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>Complet</translation>
    </message>
    <message>
        <source>Damaged</source>
        <translation>Endommagé</translation>
    </message>
    <message>
        <source>Still being written</source>
        <translation>Écriture en cours</translation>
    </message>
    <message>
        <source>Waiting for room on the disk</source>
        <translation>En attente de place sur le disque</translation>
    </message>
    <message>
        <source>&amp;Later</source>
        <translation>Plus &amp;tard</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Supprimer</translation>
    </message>
    <message>
        <source>Delete for good?</source>
        <translation>Supprimer définitivement&#xa0;?</translation>
    </message>
    <message>
        <source>Recordings to be deleted: %1. This cannot be undone.</source>
        <translation>Enregistrements à supprimer&#xa0;: %1. Cette opération est irréversible.</translation>
    </message>
    <message>
        <source>Recovered %1</source>
        <translation>Récupéré %1</translation>
    </message>
    <message>
        <source>%1 could not be deleted</source>
        <translation>%1 n’a pas pu être supprimé</translation>
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
        <translation>Diagnostic d’Orvo</translation>
    </message>
    <message>
        <source>Orvo %1

An audio recorder and simple editor.</source>
        <translation>Orvo %1

Un enregistreur audio et éditeur simple.</translation>
    </message>
    <message>
        <source>Usage: orvo [OPTION…] [--] [FILE…]</source>
        <translation>Utilisation&#xa0;: orvo [OPTION…] [--] [FILE…]</translation>
    </message>
    <message>
        <source>Orvo records from the default sound input, shows the growing waveform, and plays it back. Each file opens in a window of its own. Without a file, an empty recorder opens.</source>
        <translation>Orvo enregistre depuis l’entrée audio par défaut, affiche la forme d’onde qui grandit et la lit. Chaque fichier s’ouvre dans sa propre fenêtre. Sans fichier, un enregistreur vide s’ouvre.</translation>
    </message>
    <message>
        <source>Arguments:</source>
        <translation>Arguments&#xa0;:</translation>
    </message>
    <message>
        <source>A path or a file:// address. Orvo opens caf, aif, aiff, wav, mp3, mp4, m4a, m4r and aac.</source>
        <translation>Un chemin ou une adresse file://. Orvo ouvre caf, aif, aiff, wav, mp3, mp4, m4a, m4r et aac.</translation>
    </message>
    <message>
        <source>Ends the options. What follows is a file, even if it begins with a dash.</source>
        <translation>Termine les options. Ce qui suit est un fichier, même s’il commence par un tiret.</translation>
    </message>
    <message>
        <source>Prints this text.</source>
        <translation>Affiche ce texte.</translation>
    </message>
    <message>
        <source>Prints the version.</source>
        <translation>Affiche la version.</translation>
    </message>
    <message>
        <source>These and the other options of Qt are passed on to Qt.</source>
        <translation>Ces options et les autres de Qt sont transmises à Qt.</translation>
    </message>
    <message>
        <source>Environment:</source>
        <translation>Environnement&#xa0;:</translation>
    </message>
    <message>
        <source>The language of the texts: English, German, French, Spanish, Japanese or Simplified Chinese.</source>
        <translation>La langue des textes&#xa0;: anglais, allemand, français, espagnol, japonais ou chinois simplifié.</translation>
    </message>
    <message>
        <source>The directory in which open recordings are kept, 20 MB a minute. Otherwise /tmp, or /var/tmp if /tmp is in memory.</source>
        <translation>Le répertoire où se trouvent les enregistrements ouverts, 20 Mo par minute. Sinon /tmp, ou /var/tmp si /tmp est en mémoire.</translation>
    </message>
    <message>
        <source>If Orvo ends unexpectedly, recordings that were not saved are kept in orvo/recovered below this directory. Otherwise below ~/.local/share.</source>
        <translation>Si Orvo s’arrête de façon inattendue, les enregistrements non sauvegardés sont conservés dans orvo/recovered sous ce répertoire. Sinon sous ~/.local/share.</translation>
    </message>
    <message>
        <source>Exit status:</source>
        <translation>Code de sortie&#xa0;:</translation>
    </message>
    <message>
        <source>Orvo ended as asked.</source>
        <translation>Orvo s’est terminé comme demandé.</translation>
    </message>
    <message>
        <source>The help or the version could not be printed.</source>
        <translation>L’aide ou la version n’a pas pu être affichée.</translation>
    </message>
    <message>
        <source>An option is unknown. Nothing was opened.</source>
        <translation>Une option est inconnue. Rien n’a été ouvert.</translation>
    </message>
    <message>
        <source>orvo: unknown option: %1
Try orvo --help</source>
        <translation>orvo&#xa0;: option inconnue&#xa0;: %1
Essayez orvo --help</translation>
    </message>
    <message>
        <source>en/index.html</source>
        <translation>fr/index.html</translation>
    </message>
    <message>
        <source>%1 is missing. Install Orvo again.</source>
        <translation>%1 est absent. Réinstallez Orvo.</translation>
    </message>
    <message>
        <source>https://orvo.example/</source>
        <translation>https://orvo.example/</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Forme d’onde</translation>
    </message>
    <message>
        <source>Playback marker</source>
        <translation>Marqueur de lecture</translation>
    </message>
    <message>
        <source>Level meter</source>
        <translation>Indicateur de niveau</translation>
    </message>
    <message>
        <source>Position and length</source>
        <translation>Position et durée</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progression</translation>
    </message>
    <message>
        <source>Loading</source>
        <translation>Chargement</translation>
    </message>
    <message>
        <source>Importing</source>
        <translation>Importation</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Enregistrement du fichier</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>Exportation</translation>
    </message>
    <message>
        <source>Drawing the waveform</source>
        <translation>Tracé de la forme d’onde</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;OK</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>Do&amp;n’t Save</source>
        <translation>Ne &amp;pas enregistrer</translation>
    </message>
    <message>
        <source>Do you want to save the changes made to “%1”?</source>
        <translation>Voulez‑vous enregistrer les modifications apportées à «&#xa0;%1&#xa0;»&#xa0;?</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don’t save them.</source>
        <translation>Vos modifications seront perdues si vous ne les enregistrez pas.</translation>
    </message>
    <message>
        <source>The recording was paused.</source>
        <translation>L’enregistrement a été mis en pause.</translation>
    </message>
    <message>
        <source>Record (R)</source>
        <translation>Enregistrement (R)</translation>
    </message>
    <message>
        <source>Play (Space)</source>
        <translation>Lecture (Espace)</translation>
    </message>
    <message>
        <source>To Start (Return)</source>
        <translation>Aller au début (Entrée)</translation>
    </message>
    <message>
        <source>Ends the recording (R)</source>
        <translation>Termine l’enregistrement (R)</translation>
    </message>
    <message>
        <source>Records at the end (R)</source>
        <translation>Enregistre à la fin (R)</translation>
    </message>
    <message>
        <source>Records from %1 over what is there (R)</source>
        <translation>Enregistre à partir de %1 par-dessus l’existant (R)</translation>
    </message>
    <message>
        <source>Recording position</source>
        <translation>Position d’enregistrement</translation>
    </message>
    <message>
        <source>Clipping</source>
        <translation>Saturation</translation>
    </message>
    <message>
        <source>Too loud: clipped at %1. Click to turn off.</source>
        <translation>Trop fort&#xa0;: saturation à %1. Cliquez pour éteindre.</translation>
    </message>
    <message>
        <source>Quitting was cancelled</source>
        <translation>La fermeture a été annulée</translation>
    </message>
    <message>
        <source>A panel of “%1” is open. Answer it first, then quit again.</source>
        <translation>Une boîte de dialogue de « %1 » est ouverte. Répondez-y d’abord, puis quittez à nouveau.</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Importer</translation>
    </message>
    <message>
        <source>Import File</source>
        <translation>Importer un fichier</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Enregistrer sous</translation>
    </message>
    <message>
        <source>Save &amp;in:</source>
        <translation>Enregistrer &amp;dans&#xa0;:</translation>
    </message>
    <message>
        <source>File &amp;type:</source>
        <translation>&amp;Type de fichier&#xa0;:</translation>
    </message>
    <message>
        <source>File type</source>
        <translation>Type de fichier</translation>
    </message>
    <message>
        <source>Audio Files</source>
        <translation>Fichiers audio</translation>
    </message>
    <message>
        <source>All Files</source>
        <translation>Tous les fichiers</translation>
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
        <translation>Exporter une sonnerie</translation>
    </message>
    <message>
        <source>A ringtone begins at the marker, or at the start when the marker is at the end, and lasts at most %1 seconds.</source>
        <translation>Une sonnerie commence au marqueur, ou au début si le marqueur se trouve à la fin, et dure au plus %1&#xa0;secondes.</translation>
    </message>
    <message>
        <source>Export Waveform Picture</source>
        <translation>Exporter l’image de la forme d’onde</translation>
    </message>
    <message>
        <source>The page could not be opened</source>
        <translation>La page n’a pas pu être ouverte</translation>
    </message>
    <message>
        <source>No program was found that opens %1.</source>
        <translation>Aucun programme permettant d’ouvrir %1 n’a été trouvé.</translation>
    </message>
    <message>
        <source>The recording was stopped</source>
        <translation>L’enregistrement a été arrêté</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

Everything recorded before is kept.</source>
        <translation>Le son n’a pas pu être écrit dans le fichier temporaire. %1

Tout ce qui a été enregistré auparavant est conservé.</translation>
    </message>
    <message>
        <source>Playing was stopped</source>
        <translation>La lecture a été arrêtée</translation>
    </message>
    <message>
        <source>The audio could not be read from the temporary file. %1</source>
        <translation>Le son n’a pas pu être lu dans le fichier temporaire. %1</translation>
    </message>
    <message>
        <source>%1 could not be loaded whole</source>
        <translation>%1 n’a pas pu être chargé en entier</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

%2</source>
        <translation>Le son n’a pas pu être écrit dans le fichier temporaire. %1

%2</translation>
    </message>
    <message>
        <source>Nothing was imported.</source>
        <translation>Rien n’a été importé.</translation>
    </message>
    <message>
        <source>Space for less than %1 minutes of recording is left in %2.</source>
        <translation>L’espace libre dans %2 suffit pour moins de %1&#xa0;minutes d’enregistrement.</translation>
    </message>
    <message>
        <source>Space for less than a minute of recording is left in %1.</source>
        <translation>L’espace libre dans %1 suffit pour moins d’une minute d’enregistrement.</translation>
    </message>
    <message>
        <source>%1 does not fit on the disk</source>
        <translation>%1 ne tient pas sur le disque</translation>
    </message>
    <message>
        <source>It needs about %1, but the disk of the folder %2 has only %3 left.</source>
        <translation>Il faut environ %1, mais il ne reste que %3 sur le disque du dossier %2.</translation>
    </message>
    <message>
        <source>Orvo is recording</source>
        <translation>Orvo enregistre</translation>
    </message>
    <message>
        <source>Goes in at the end.</source>
        <translation>Sera inséré à la fin.</translation>
    </message>
    <message>
        <source>Goes in at %1.</source>
        <translation>Sera inséré à %1.</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces %2.</source>
        <translation>Sera inséré à %1 et remplacera %2.</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces about %2.</source>
        <translation>Sera inséré à %1 et remplacera environ %2.</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1&#xa0;s</translation>
    </message>
    <message>
        <source>Everything loaded before is kept.</source>
        <translation>Tout ce qui a été chargé auparavant est conservé.</translation>
    </message>
    <message>
        <source>The recording is too long for a file of the type %1. Choose another type.</source>
        <translation>L’enregistrement est trop long pour un fichier de type %1. Choisissez un autre type.</translation>
    </message>
    <message>
        <source>An AAC file cannot be empty. Record something first.</source>
        <translation>Un fichier AAC ne peut pas être vide. Enregistrez d’abord quelque chose.</translation>
    </message>
    <message>
        <source>%1 seconds of the recording could not be read.</source>
        <translation>Une partie de l’enregistrement (%1&#xa0;s) n’a pas pu être lue.</translation>
    </message>
    <message>
        <source>They are silent in the file.</source>
        <translation>Elle est silencieuse dans le fichier.</translation>
    </message>
    <message>
        <source>The file that was there was kept. Save under another name to get the rest.</source>
        <translation>Le fichier existant a été conservé. Enregistrez sous un autre nom pour obtenir le reste.</translation>
    </message>
    <message>
        <source>The file was saved but could not be opened</source>
        <translation>Le fichier a été enregistré, mais n’a pas pu être ouvert</translation>
    </message>
    <message>
        <source>%1 could not be saved</source>
        <translation>%1 n’a pas pu être enregistré</translation>
    </message>
    <message>
        <source>%1 was saved with gaps</source>
        <translation>%1 a été enregistré avec des lacunes</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>«&#xa0;%1&#xa0;»</translation>
    </message>
    <message>
        <source>You do not have the permission for it.</source>
        <translation>Vous n’en avez pas l’autorisation.</translation>
    </message>
    <message>
        <source>The disk is full.</source>
        <translation>Le disque est plein.</translation>
    </message>
    <message>
        <source>You have used up your share of the disk.</source>
        <translation>Votre quota d’espace disque est épuisé.</translation>
    </message>
    <message>
        <source>The file would become larger than the disk allows.</source>
        <translation>Le fichier dépasserait la taille autorisée par le disque.</translation>
    </message>
    <message>
        <source>The disk can only be read.</source>
        <translation>Le disque est en lecture seule.</translation>
    </message>
    <message>
        <source>The folder or the file is not there any more.</source>
        <translation>Le dossier ou le fichier n’existe plus.</translation>
    </message>
    <message>
        <source>“%1” already exists. Do you want to replace it?</source>
        <translation>«&#xa0;%1&#xa0;» existe déjà. Voulez‑vous remplacer ce fichier&#xa0;?</translation>
    </message>
    <message>
        <source>Another program has changed the folder or the file meanwhile.</source>
        <translation>Un autre programme a modifié le dossier ou le fichier entre-temps.</translation>
    </message>
    <message>
        <source>&amp;Look in:</source>
        <translation>&amp;Rechercher dans&#xa0;:</translation>
    </message>
    <message>
        <source>File &amp;name:</source>
        <translation>&amp;Nom du fichier&#xa0;:</translation>
    </message>
    <message>
        <source>Files of &amp;type:</source>
        <translation>Fichiers de &amp;type&#xa0;:</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Taille</translation>
    </message>
    <message>
        <source>Date modified</source>
        <translation>Date de modification</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Fichiers</translation>
    </message>
    <message>
        <source>Parent Folder</source>
        <translation>Dossier parent</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>Nouveau dossier</translation>
    </message>
    <message>
        <source>Name of the new folder:</source>
        <translation>Nom du nouveau dossier&#xa0;:</translation>
    </message>
    <message>
        <source>Waiting for the folder to answer…</source>
        <translation>En attente d’une réponse du dossier…</translation>
    </message>
    <message>
        <source>The files cannot be shown</source>
        <translation>Les fichiers ne peuvent pas être affichés</translation>
    </message>
    <message>
        <source>There is no room for another window</source>
        <translation>Impossible d’ouvrir une autre fenêtre</translation>
    </message>
    <message>
        <source>Too many files are open. Close some windows, then try again.</source>
        <translation>Trop de fichiers sont ouverts. Fermez quelques fenêtres, puis réessayez.</translation>
    </message>
    <message>
        <source>%1 can only be overwritten</source>
        <translation>%1 peut seulement être écrasé</translation>
    </message>
    <message>
        <source>You may not make files in its folder. The old file is copied to the temporary directory first. The copy is kept if writing fails.</source>
        <translation>Vous n’avez pas le droit de créer des fichiers dans son dossier. L’ancien fichier est d’abord copié dans le répertoire temporaire. La copie est conservée si l’écriture échoue.</translation>
    </message>
    <message>
        <source>&amp;Overwrite</source>
        <translation>É&amp;craser</translation>
    </message>
    <message>
        <source>There is no such folder.</source>
        <translation>Ce dossier n’existe pas.</translation>
    </message>
    <message>
        <source>It is not a folder.</source>
        <translation>Ce n’est pas un dossier.</translation>
    </message>
    <message>
        <source>The temporary directory “%1” cannot be used. %2</source>
        <translation>Le répertoire temporaire «&#xa0;%1&#xa0;» ne peut pas être utilisé. %2</translation>
    </message>
    <message>
        <source>title</source>
        <translation>titre</translation>
    </message>
    <message>
        <source>artist</source>
        <translation>artiste</translation>
    </message>
    <message>
        <source>album</source>
        <translation>album</translation>
    </message>
    <message>
        <source>date</source>
        <translation>date</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>commentaire</translation>
    </message>
    <message>
        <source>genre</source>
        <translation>genre</translation>
    </message>
    <message>
        <source>track</source>
        <translation>numéro de piste</translation>
    </message>
    <message>
        <source>cover</source>
        <translation>pochette</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 et %2</translation>
    </message>
    <message>
        <source>%1 kHz</source>
        <translation>%1 kHz</translation>
    </message>
    <message>
        <source>%1 bits</source>
        <translation>%1 bits</translation>
    </message>
    <message>
        <source>%1 channels</source>
        <translation>%1 canaux</translation>
    </message>
    <message>
        <source>lossless sound</source>
        <translation>un son sans perte</translation>
    </message>
    <message>
        <source>compressed sound (AAC)</source>
        <translation>un son compressé (AAC)</translation>
    </message>
    <message>
        <source>The old file has %1, the new one only has %2.</source>
        <translation>L’ancien fichier a %1, le nouveau seulement %2.</translation>
    </message>
    <message>
        <source>16 bits, 44.1 kHz, stereo</source>
        <translation>16 bits, 44,1 kHz, stéréo</translation>
    </message>
    <message>
        <source>AAC with 256 kbit/s, 44.1 kHz, stereo</source>
        <translation>AAC à 256 kbit/s, 44,1 kHz, stéréo</translation>
    </message>
    <message>
        <source>%1; keeps %2</source>
        <translation>%1&#xa0;; garde %2</translation>
    </message>
    <message>
        <source>%1; leaves out the cover</source>
        <translation>%1&#xa0;; sans la pochette</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Enregistrer</translation>
    </message>
    <message>
        <source>The file is damaged. What was in it is kept in %1.</source>
        <translation>Le fichier est endommagé. Son ancien contenu est conservé dans %1.</translation>
    </message>
    <message>
        <source>There is a folder of this name.</source>
        <translation>Un dossier porte déjà ce nom.</translation>
    </message>
    <message>
        <source>It is not an ordinary file.</source>
        <translation>Ce n’est pas un fichier ordinaire.</translation>
    </message>
    <message>
        <source>The disk could not be read or written.</source>
        <translation>Le disque n’a pas pu être lu ou écrit.</translation>
    </message>
    <message>
        <source>The disk has been removed.</source>
        <translation>Le disque a été retiré.</translation>
    </message>
    <message>
        <source>The name is too long.</source>
        <translation>Le nom est trop long.</translation>
    </message>
    <message>
        <source>The name is a link that leads back to itself.</source>
        <translation>Le nom est un lien qui renvoie à lui-même.</translation>
    </message>
    <message>
        <source>Too many files are open.</source>
        <translation>Trop de fichiers sont ouverts.</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>Il n’y a pas assez de mémoire.</translation>
    </message>
    <message>
        <source>The computer is too busy just now.</source>
        <translation>L’ordinateur est trop occupé en ce moment.</translation>
    </message>
    <message>
        <source>Another program is using it.</source>
        <translation>Un autre programme l’utilise.</translation>
    </message>
    <message>
        <source>There is already a file or a folder of this name.</source>
        <translation>Il existe déjà un fichier ou un dossier de ce nom.</translation>
    </message>
    <message>
        <source>The disk does not allow it.</source>
        <translation>Le disque ne le permet pas.</translation>
    </message>
    <message>
        <source>The disk does not answer.</source>
        <translation>Le disque ne répond pas.</translation>
    </message>
    <message>
        <source>You are not allowed to read %1. Ask its owner, or change its permissions.</source>
        <translation>Vous n’êtes pas autorisé à lire %1. Adressez-vous à son propriétaire ou modifiez ses droits d’accès.</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose a sound file inside it.</source>
        <translation>%1 est un dossier. Choisissez un fichier audio qu’il contient.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file, but a device or a connection to another program.</source>
        <translation>%1 n’est pas un fichier ordinaire, mais un périphérique ou une connexion à un autre programme.</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 est vide.</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long.</source>
        <translation>Le nom ou le chemin de %1 est trop long.</translation>
    </message>
    <message>
        <source>There is no sound in %1.</source>
        <translation>%1 ne contient pas de son.</translation>
    </message>
    <message>
        <source>The sound in %1 is encoded in a way that cannot be read. Up to 8 channels and rates from 1,000 to 768,000 Hz can be.</source>
        <translation>Le codage du son de %1 ne peut pas être lu. Sont acceptés jusqu’à 8 canaux et des fréquences d’échantillonnage de 1&#xa0;000 à 768&#xa0;000&#xa0;Hz.</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error.</source>
        <translation>Le support sur lequel %1 est enregistré a signalé une erreur.</translation>
    </message>
    <message>
        <source>%1 could not be opened, because too many files are open. Close some windows first.</source>
        <translation>%1 n’a pas pu être ouvert, car trop de fichiers sont ouverts. Fermez d’abord quelques fenêtres.</translation>
    </message>
    <message>
        <source>There was not enough memory to read %1.</source>
        <translation>La mémoire ne suffit pas pour lire %1.</translation>
    </message>
    <message>
        <source>%1 cannot be read: FFmpeg’s libraries are missing on this computer.</source>
        <translation>%1 ne peut pas être lu&#xa0;: les bibliothèques de FFmpeg sont absentes de cet ordinateur.</translation>
    </message>
    <message>
        <source>%1 is not a sound file that can be read, or it is damaged.</source>
        <translation>%1 n’est pas un fichier audio lisible, ou il est endommagé.</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error. What could be read before it is kept.</source>
        <translation>Le support sur lequel %1 est enregistré a signalé une erreur. Ce qui a pu être lu auparavant est conservé.</translation>
    </message>
    <message>
        <source>There was not enough memory to read all of %1. What could be read is kept.</source>
        <translation>La mémoire ne suffit pas pour lire %1 en entier. Ce qui a pu être lu est conservé.</translation>
    </message>
    <message>
        <source>From some place on the sound in %1 is encoded in a way that cannot be read. What came before it is kept.</source>
        <translation>À partir d’un certain endroit, le codage du son de %1 ne peut pas être lu. Ce qui précède est conservé.</translation>
    </message>
    <message>
        <source>%1 can no longer be read. What could be read of it is kept.</source>
        <translation>%1 ne peut plus être lu. Ce qui a pu en être lu est conservé.</translation>
    </message>
    <message>
        <source>%1 is damaged or was cut off. What could be read of it is kept.</source>
        <translation>%1 est endommagé ou tronqué. Ce qui a pu en être lu est conservé.</translation>
    </message>
    <message>
        <source>The folder in which %1 was to be written is not there. Choose another one.</source>
        <translation>Le dossier dans lequel %1 devait être écrit n’existe pas. Choisissez-en un autre.</translation>
    </message>
    <message>
        <source>You are not allowed to write %1. Choose another folder, or change the permissions.</source>
        <translation>Vous n’êtes pas autorisé à écrire %1. Choisissez un autre dossier ou modifiez les droits d’accès.</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose another name.</source>
        <translation>%1 est un dossier. Choisissez un autre nom.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file. Choose another name.</source>
        <translation>%1 n’est pas un fichier ordinaire. Choisissez un autre nom.</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long. Choose a shorter one.</source>
        <translation>Le nom ou le chemin de %1 est trop long. Choisissez-en un plus court.</translation>
    </message>
    <message>
        <source>There is not enough room to write %1. Make room, or choose another disk.</source>
        <translation>L’espace disponible ne suffit pas pour écrire %1. Libérez de l’espace ou choisissez un autre disque.</translation>
    </message>
    <message>
        <source>%1 would be larger than a file of its kind or on this disk may be. Choose another kind of file or another disk.</source>
        <translation>%1 dépasserait la taille permise pour un fichier de ce type ou sur ce disque. Choisissez un autre type de fichier ou un autre disque.</translation>
    </message>
    <message>
        <source>%1 could not be written, because too many files are open. Close some windows first.</source>
        <translation>%1 n’a pas pu être écrit, car trop de fichiers sont ouverts. Fermez d’abord quelques fenêtres.</translation>
    </message>
    <message>
        <source>There was not enough memory to write %1.</source>
        <translation>La mémoire ne suffit pas pour écrire %1.</translation>
    </message>
    <message>
        <source>%1 cannot be written: FFmpeg’s libraries are missing on this computer.</source>
        <translation>%1 ne peut pas être écrit&#xa0;: les bibliothèques de FFmpeg sont absentes de cet ordinateur.</translation>
    </message>
    <message>
        <source>%1 cannot be written as a file of this kind.</source>
        <translation>%1 ne peut pas être écrit comme fichier de ce type.</translation>
    </message>
    <message>
        <source>The medium on which %1 was to be written reported an error. It may have been removed.</source>
        <translation>Le support sur lequel %1 devait être écrit a signalé une erreur. Il a peut-être été retiré.</translation>
    </message>
    <message>
        <source>File Format Error</source>
        <translation>Erreur de format de fichier</translation>
    </message>
    <message>
        <source>The file is of an unsupported format.</source>
        <translation>Le format du fichier n’est pas pris en charge.</translation>
    </message>
    <message>
        <source>Core Audio Error</source>
        <translation>Erreur Core Audio</translation>
    </message>
    <message>
        <source>Core Audio returned the error: %s (%s)</source>
        <translation>Core Audio a renvoyé l’erreur&#xa0;: %s (%s)</translation>
    </message>
    <message>
        <source>No sound input could be opened. Connect a microphone or another input, check that sound works on this computer, then press Record again. Everything recorded so far is kept.</source>
        <translation>Aucune entrée audio n’a pu être ouverte. Branchez un microphone ou une autre entrée, vérifiez que le son fonctionne sur cet ordinateur, puis cliquez de nouveau sur «&#xa0;Enregistrement&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>L’entrée audio a disparu&#xa0;: elle a été débranchée, ou le système audio s’est arrêté. L’enregistrement est terminé. Rebranchez l’entrée, puis cliquez sur «&#xa0;Enregistrement&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>L’entrée audio a disparu&#xa0;: elle a été débranchée, ou le système audio s’est arrêté. Rebranchez-la avant de cliquer sur «&#xa0;Enregistrement&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>L’entrée audio «&#xa0;%1&#xa0;» a disparu&#xa0;: elle a été débranchée, ou le système audio s’est arrêté. Rebranchez-la avant de cliquer sur «&#xa0;Enregistrement&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>L’entrée audio «&#xa0;%1&#xa0;» a disparu&#xa0;: elle a été débranchée, ou le système audio s’est arrêté. L’enregistrement est terminé. Rebranchez l’entrée, puis cliquez sur «&#xa0;Enregistrement&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>Plus rien n’est arrivé de l’entrée audio&#xa0;: elle est bloquée, ou le système audio ne répond pas. L’enregistrement est terminé. Vérifiez l’entrée, puis cliquez sur «&#xa0;Enregistrement&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input “%1”: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>Plus rien n’est arrivé de l’entrée audio «&#xa0;%1&#xa0;»&#xa0;: elle est bloquée, ou le système audio ne répond pas. L’enregistrement est terminé. Vérifiez l’entrée, puis cliquez sur «&#xa0;Enregistrement&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>The sound output stands still, or the sound system does not answer. Playback has ended. Check the output, then press Play. Everything recorded so far is kept.</source>
        <translation>La sortie audio est bloquée, ou le système audio ne répond pas. La lecture est terminée. Vérifiez la sortie, puis cliquez sur «&#xa0;Lecture&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>Recording from the default input</source>
        <translation>Enregistrement depuis l’entrée par défaut</translation>
    </message>
    <message>
        <source>Recording from %1</source>
        <translation>Enregistrement depuis %1</translation>
    </message>
    <message>
        <source>Recording has been paused.</source>
        <translation>L’enregistrement a été mis en pause.</translation>
    </message>
    <message>
        <source>No microphone</source>
        <translation>Aucun microphone</translation>
    </message>
    <message>
        <source>No microphone: recording what this computer plays</source>
        <translation>Aucun microphone&#xa0;: enregistrement de ce que cet ordinateur joue</translation>
    </message>
    <message>
        <source>Nothing is coming in</source>
        <translation>Aucun son n’arrive</translation>
    </message>
    <message>
        <source>This computer is running out of memory</source>
        <translation>Cet ordinateur n’a presque plus de mémoire</translation>
    </message>
    <message>
        <source>%1 s were lost at %2</source>
        <translation>%1&#xa0;s ont été perdues à %2</translation>
    </message>
    <message>
        <source>Lost in this recording: %1 s, first at %2</source>
        <translation>Perte dans cet enregistrement&#xa0;: %1&#xa0;s, la première à %2</translation>
    </message>
    <message>
        <source>Lost sound</source>
        <translation>Son perdu</translation>
    </message>
    <message>
        <source>The system allows no further thread. Close some windows or other programs, then try again. Everything recorded so far is kept.</source>
        <translation>Le système n’autorise aucun thread supplémentaire. Fermez quelques fenêtres ou d’autres programmes, puis réessayez. Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>No sound output could be opened. Connect loudspeakers or headphones, check that sound works on this computer, then press Play again. Everything recorded so far is kept.</source>
        <translation>Aucune sortie audio n’a pu être ouverte. Branchez des haut-parleurs ou un casque, vérifiez que le son fonctionne sur cet ordinateur, puis cliquez de nouveau sur «&#xa0;Lecture&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>The sound output has gone: it was unplugged, or the sound system stopped. Playback has ended. Connect the output again, then press Play. Everything recorded so far is kept.</source>
        <translation>La sortie audio a disparu&#xa0;: elle a été débranchée, ou le système audio s’est arrêté. La lecture est terminée. Rebranchez la sortie, puis cliquez sur «&#xa0;Lecture&#xa0;». Tout ce qui a été enregistré jusqu’ici est conservé.</translation>
    </message>
    <message>
        <source>no queue on record!</source>
        <translation>Aucune file d’attente pour l’enregistrement&#xa0;!</translation>
    </message>
    <message>
        <source>this shouldn't happen. contact </source>
        <translation>Cela ne devrait pas se produire. Contactez </translation>
    </message>
</context>
</TS>

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name>Orvo</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Archivo</translation>
    </message>
    <message>
        <source>&amp;New Recorder</source>
        <translation>&amp;Nueva grabadora</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Abrir…</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Abrir &amp;reciente</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importar…</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>Guardar &amp;como…</translation>
    </message>
    <message>
        <source>Export Rin&amp;gtone…</source>
        <translation>Exportar &amp;tono de llamada…</translation>
    </message>
    <message>
        <source>Export &amp;Waveform Picture…</source>
        <translation>Exportar imagen de la &amp;forma de onda…</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>C&amp;errar</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Editar</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Deshacer</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Rehacer</translation>
    </message>
    <message>
        <source>&amp;Undo %1</source>
        <translation>&amp;Deshacer: %1</translation>
    </message>
    <message>
        <source>&amp;Redo %1</source>
        <translation>&amp;Rehacer: %1</translation>
    </message>
    <message>
        <source>Remove After Marker</source>
        <translation>Eliminar después del marcador</translation>
    </message>
    <message>
        <source>Remove Before Marker</source>
        <translation>Eliminar antes del marcador</translation>
    </message>
    <message>
        <source>Reverse Audio</source>
        <translation>Invertir audio</translation>
    </message>
    <message>
        <source>&amp;Transport</source>
        <translation>&amp;Transporte</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Grabar</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Reproducir</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pausar</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Detener</translation>
    </message>
    <message>
        <source>To Start</source>
        <translation>Ir al principio</translation>
    </message>
    <message>
        <source>To End</source>
        <translation>Ir al final</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Espacio</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Intro</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ver</translation>
    </message>
    <message>
        <source>Spectrum</source>
        <translation>Espectro</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>A&amp;yuda</translation>
    </message>
    <message>
        <source>Remove &amp;After Marker</source>
        <translation>Eliminar de&amp;spués del marcador</translation>
    </message>
    <message>
        <source>Remove &amp;Before Marker</source>
        <translation>Eliminar &amp;antes del marcador</translation>
    </message>
    <message>
        <source>Re&amp;verse Audio</source>
        <translation>&amp;Invertir audio</translation>
    </message>
    <message>
        <source>&amp;About Orvo</source>
        <translation>&amp;Acerca de Orvo</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>&amp;Grabar</translation>
    </message>
    <message>
        <source>&amp;Play</source>
        <translation>&amp;Reproducir</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Detener</translation>
    </message>
    <message>
        <source>&amp;To Start</source>
        <translation>Ir al &amp;principio</translation>
    </message>
    <message>
        <source>To &amp;End</source>
        <translation>Ir al &amp;final</translation>
    </message>
    <message>
        <source>&amp;Spectrum</source>
        <translation>&amp;Espectro</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>&amp;Abrir</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>&amp;Importar</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>&amp;Reemplazar</translation>
    </message>
    <message>
        <source>Nothing has been reported.</source>
        <translation>No se ha comunicado nada.</translation>
    </message>
    <message>
        <source>Recording %1</source>
        <translation>Grabación %1</translation>
    </message>
    <message>
        <source>There is no file %1.</source>
        <translation>No hay ningún archivo %1.</translation>
    </message>
    <message>
        <source>There is no file “%1”.</source>
        <translation>No hay ningún archivo «%1».</translation>
    </message>
    <message>
        <source>You may not write in the folder %1. Choose another.</source>
        <translation>No puede escribir en la carpeta %1. Elija otra.</translation>
    </message>
    <message>
        <source>&amp;Documentation</source>
        <translation>&amp;Documentación</translation>
    </message>
    <message>
        <source>D&amp;iagnostics</source>
        <translation>D&amp;iagnóstico</translation>
    </message>
    <message>
        <source>About Orvo</source>
        <translation>Acerca de Orvo</translation>
    </message>
    <message>
        <source>Orvo</source>
        <translation>Orvo</translation>
    </message>
    <message>
        <source>Unnamed</source>
        <translation>Sin título</translation>
    </message>
    <message>
        <source>&amp;Recovered Recordings…</source>
        <translation>&amp;Grabaciones recuperadas…</translation>
    </message>
    <message>
        <source>Recovered Recordings</source>
        <translation>Grabaciones recuperadas</translation>
    </message>
    <message>
        <source>Orvo ended unexpectedly.</source>
        <translation>Orvo se cerró de forma inesperada.</translation>
    </message>
    <message>
        <source>Recordings kept: %1</source>
        <translation>Grabaciones conservadas: %1</translation>
    </message>
    <message>
        <source>Each recording opens in a window of its own. It is kept until you save or discard it.</source>
        <translation>Cada grabación se abre en su propia ventana. Se conserva hasta que la guarde o la descarte.</translation>
    </message>
    <message>
        <source>There are no recovered recordings.</source>
        <translation>No hay grabaciones recuperadas.</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Fecha</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Duración</translation>
    </message>
    <message>
        <source>State</source>
        <translation>Estado</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>Completa</translation>
    </message>
    <message>
        <source>Damaged</source>
        <translation>Dañada</translation>
    </message>
    <message>
        <source>Still being written</source>
        <translation>Aún se está escribiendo</translation>
    </message>
    <message>
        <source>Waiting for room on the disk</source>
        <translation>A la espera de espacio en el disco</translation>
    </message>
    <message>
        <source>&amp;Later</source>
        <translation>&amp;Más tarde</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>E&amp;liminar</translation>
    </message>
    <message>
        <source>Delete for good?</source>
        <translation>¿Eliminar definitivamente?</translation>
    </message>
    <message>
        <source>Recordings to be deleted: %1. This cannot be undone.</source>
        <translation>Grabaciones que se eliminarán: %1. Esto no se puede deshacer.</translation>
    </message>
    <message>
        <source>Recovered %1</source>
        <translation>Recuperada %1</translation>
    </message>
    <message>
        <source>%1 could not be deleted</source>
        <translation>No se pudo eliminar %1</translation>
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
        <translation>Diagnóstico de Orvo</translation>
    </message>
    <message>
        <source>Orvo %1

An audio recorder and simple editor.</source>
        <translation>Orvo %1

Una grabadora de audio con un editor sencillo.</translation>
    </message>
    <message>
        <source>Usage: orvo [OPTION…] [--] [FILE…]</source>
        <translation>Uso: orvo [OPTION…] [--] [FILE…]</translation>
    </message>
    <message>
        <source>Orvo records from the default sound input, shows the growing waveform, and plays it back. Each file opens in a window of its own. Without a file, an empty recorder opens.</source>
        <translation>Orvo graba de la entrada de sonido predeterminada, muestra la forma de onda que crece y la reproduce. Cada archivo se abre en su propia ventana. Sin archivo, se abre una grabadora vacía.</translation>
    </message>
    <message>
        <source>Arguments:</source>
        <translation>Argumentos:</translation>
    </message>
    <message>
        <source>A path or a file:// address. Orvo opens caf, aif, aiff, wav, mp3, mp4, m4a, m4r and aac.</source>
        <translation>Una ruta o una dirección file://. Orvo abre caf, aif, aiff, wav, mp3, mp4, m4a, m4r y aac.</translation>
    </message>
    <message>
        <source>Ends the options. What follows is a file, even if it begins with a dash.</source>
        <translation>Termina las opciones. Lo que sigue es un archivo, aunque empiece con un guion.</translation>
    </message>
    <message>
        <source>Prints this text.</source>
        <translation>Muestra este texto.</translation>
    </message>
    <message>
        <source>Prints the version.</source>
        <translation>Muestra la versión.</translation>
    </message>
    <message>
        <source>These and the other options of Qt are passed on to Qt.</source>
        <translation>Estas y las demás opciones de Qt se pasan a Qt.</translation>
    </message>
    <message>
        <source>Environment:</source>
        <translation>Entorno:</translation>
    </message>
    <message>
        <source>The language of the texts: English, German, French, Spanish, Japanese or Simplified Chinese.</source>
        <translation>El idioma de los textos: inglés, alemán, francés, español, japonés o chino simplificado.</translation>
    </message>
    <message>
        <source>The directory in which open recordings are kept, 20 MB a minute. Otherwise /tmp, or /var/tmp if /tmp is in memory.</source>
        <translation>El directorio de las grabaciones abiertas, 20 MB por minuto. Si no, /tmp, o /var/tmp si /tmp está en la memoria.</translation>
    </message>
    <message>
        <source>If Orvo ends unexpectedly, recordings that were not saved are kept in orvo/recovered below this directory. Otherwise below ~/.local/share.</source>
        <translation>Si Orvo se cierra de forma inesperada, las grabaciones sin guardar se conservan en orvo/recovered bajo este directorio. Si no, bajo ~/.local/share.</translation>
    </message>
    <message>
        <source>Exit status:</source>
        <translation>Código de salida:</translation>
    </message>
    <message>
        <source>Orvo ended as asked.</source>
        <translation>Orvo terminó como se pidió.</translation>
    </message>
    <message>
        <source>The help or the version could not be printed.</source>
        <translation>No se pudo mostrar la ayuda o la versión.</translation>
    </message>
    <message>
        <source>An option is unknown. Nothing was opened.</source>
        <translation>Una opción es desconocida. No se abrió nada.</translation>
    </message>
    <message>
        <source>orvo: unknown option: %1
Try orvo --help</source>
        <translation>orvo: opción desconocida: %1
Pruebe con orvo --help</translation>
    </message>
    <message>
        <source>en/index.html</source>
        <translation>es/index.html</translation>
    </message>
    <message>
        <source>%1 is missing. Install Orvo again.</source>
        <translation>Falta %1. Instale Orvo de nuevo.</translation>
    </message>
    <message>
        <source>https://orvo.example/</source>
        <translation>https://orvo.example/</translation>
    </message>
    <message>
        <source>Waveform</source>
        <translation>Forma de onda</translation>
    </message>
    <message>
        <source>Playback marker</source>
        <translation>Marcador de reproducción</translation>
    </message>
    <message>
        <source>Level meter</source>
        <translation>Medidor de nivel</translation>
    </message>
    <message>
        <source>Position and length</source>
        <translation>Posición y duración</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progreso</translation>
    </message>
    <message>
        <source>Loading</source>
        <translation>Cargando</translation>
    </message>
    <message>
        <source>Importing</source>
        <translation>Importando</translation>
    </message>
    <message>
        <source>Saving</source>
        <translation>Guardando</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>Exportando</translation>
    </message>
    <message>
        <source>Drawing the waveform</source>
        <translation>Dibujando la forma de onda</translation>
    </message>
    <message>
        <source>&amp;OK</source>
        <translation>&amp;Aceptar</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Cancelar</translation>
    </message>
    <message>
        <source>Do&amp;n’t Save</source>
        <translation>&amp;No guardar</translation>
    </message>
    <message>
        <source>Do you want to save the changes made to “%1”?</source>
        <translation>¿Desea guardar los cambios realizados en «%1»?</translation>
    </message>
    <message>
        <source>Your changes will be lost if you don’t save them.</source>
        <translation>Si no los guarda, se perderán los cambios.</translation>
    </message>
    <message>
        <source>The recording was paused.</source>
        <translation>La grabación se ha pausado.</translation>
    </message>
    <message>
        <source>Record (R)</source>
        <translation>Grabar (R)</translation>
    </message>
    <message>
        <source>Play (Space)</source>
        <translation>Reproducir (Espacio)</translation>
    </message>
    <message>
        <source>To Start (Return)</source>
        <translation>Ir al principio (Intro)</translation>
    </message>
    <message>
        <source>Ends the recording (R)</source>
        <translation>Termina la grabación (R)</translation>
    </message>
    <message>
        <source>Records at the end (R)</source>
        <translation>Graba al final (R)</translation>
    </message>
    <message>
        <source>Records from %1 over what is there (R)</source>
        <translation>Graba desde %1 sobre lo que hay (R)</translation>
    </message>
    <message>
        <source>Recording position</source>
        <translation>Posición de grabación</translation>
    </message>
    <message>
        <source>Clipping</source>
        <translation>Saturación</translation>
    </message>
    <message>
        <source>Too loud: clipped at %1. Click to turn off.</source>
        <translation>Demasiado fuerte: saturado en %1. Haga clic para apagar.</translation>
    </message>
    <message>
        <source>Quitting was cancelled</source>
        <translation>Se ha cancelado la salida</translation>
    </message>
    <message>
        <source>A panel of “%1” is open. Answer it first, then quit again.</source>
        <translation>Hay un diálogo abierto en «%1». Respóndalo primero y vuelva a salir.</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Abrir</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Importar</translation>
    </message>
    <message>
        <source>Import File</source>
        <translation>Importar archivo</translation>
    </message>
    <message>
        <source>Save As</source>
        <translation>Guardar como</translation>
    </message>
    <message>
        <source>Save &amp;in:</source>
        <translation>G&amp;uardar en:</translation>
    </message>
    <message>
        <source>File &amp;type:</source>
        <translation>&amp;Tipo de archivo:</translation>
    </message>
    <message>
        <source>File type</source>
        <translation>Tipo de archivo</translation>
    </message>
    <message>
        <source>Audio Files</source>
        <translation>Archivos de audio</translation>
    </message>
    <message>
        <source>All Files</source>
        <translation>Todos los archivos</translation>
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
        <translation>Exportar tono de llamada</translation>
    </message>
    <message>
        <source>A ringtone begins at the marker, or at the start when the marker is at the end, and lasts at most %1 seconds.</source>
        <translation>Un tono de llamada empieza en el marcador, o al principio si el marcador está al final, y dura como máximo %1&#xa0;segundos.</translation>
    </message>
    <message>
        <source>Export Waveform Picture</source>
        <translation>Exportar imagen de la forma de onda</translation>
    </message>
    <message>
        <source>The page could not be opened</source>
        <translation>No se pudo abrir la página</translation>
    </message>
    <message>
        <source>No program was found that opens %1.</source>
        <translation>No se encontró ningún programa que abra %1.</translation>
    </message>
    <message>
        <source>The recording was stopped</source>
        <translation>Se ha detenido la grabación</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

Everything recorded before is kept.</source>
        <translation>No se pudo escribir el audio en el archivo temporal. %1

Se conserva todo lo grabado hasta entonces.</translation>
    </message>
    <message>
        <source>Playing was stopped</source>
        <translation>Se ha detenido la reproducción</translation>
    </message>
    <message>
        <source>The audio could not be read from the temporary file. %1</source>
        <translation>No se pudo leer el audio del archivo temporal. %1</translation>
    </message>
    <message>
        <source>%1 could not be loaded whole</source>
        <translation>No se pudo cargar %1 por completo</translation>
    </message>
    <message>
        <source>The audio could not be written to the temporary file. %1

%2</source>
        <translation>No se pudo escribir el audio en el archivo temporal. %1

%2</translation>
    </message>
    <message>
        <source>Nothing was imported.</source>
        <translation>No se ha importado nada.</translation>
    </message>
    <message>
        <source>Space for less than %1 minutes of recording is left in %2.</source>
        <translation>El espacio libre en %2 alcanza para menos de %1&#xa0;minutos de grabación.</translation>
    </message>
    <message>
        <source>Space for less than a minute of recording is left in %1.</source>
        <translation>El espacio libre en %1 alcanza para menos de un minuto de grabación.</translation>
    </message>
    <message>
        <source>%1 does not fit on the disk</source>
        <translation>%1 no cabe en el disco</translation>
    </message>
    <message>
        <source>It needs about %1, but the disk of the folder %2 has only %3 left.</source>
        <translation>Se necesitan unos %1, pero en el disco de la carpeta %2 solo quedan %3.</translation>
    </message>
    <message>
        <source>Orvo is recording</source>
        <translation>Orvo está grabando</translation>
    </message>
    <message>
        <source>Goes in at the end.</source>
        <translation>Se insertará al final.</translation>
    </message>
    <message>
        <source>Goes in at %1.</source>
        <translation>Se insertará en %1.</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces %2.</source>
        <translation>Se insertará en %1 y reemplazará %2.</translation>
    </message>
    <message>
        <source>Goes in at %1 and replaces about %2.</source>
        <translation>Se insertará en %1 y reemplazará aproximadamente %2.</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1&#xa0;s</translation>
    </message>
    <message>
        <source>Everything loaded before is kept.</source>
        <translation>Se conserva todo lo cargado hasta entonces.</translation>
    </message>
    <message>
        <source>The recording is too long for a file of the type %1. Choose another type.</source>
        <translation>La grabación es demasiado larga para un archivo de tipo %1. Elija otro tipo.</translation>
    </message>
    <message>
        <source>An AAC file cannot be empty. Record something first.</source>
        <translation>Un archivo AAC no puede estar vacío. Grabe algo primero.</translation>
    </message>
    <message>
        <source>%1 seconds of the recording could not be read.</source>
        <translation>No se pudieron leer %1&#xa0;segundos de la grabación.</translation>
    </message>
    <message>
        <source>They are silent in the file.</source>
        <translation>En el archivo quedan en silencio.</translation>
    </message>
    <message>
        <source>The file that was there was kept. Save under another name to get the rest.</source>
        <translation>Se conservó el archivo que ya había. Guarde con otro nombre para obtener el resto.</translation>
    </message>
    <message>
        <source>The file was saved but could not be opened</source>
        <translation>El archivo se guardó, pero no se pudo abrir</translation>
    </message>
    <message>
        <source>%1 could not be saved</source>
        <translation>No se pudo guardar %1</translation>
    </message>
    <message>
        <source>%1 was saved with gaps</source>
        <translation>%1 se guardó con huecos</translation>
    </message>
    <message>
        <source>“%1”</source>
        <translation>«%1»</translation>
    </message>
    <message>
        <source>You do not have the permission for it.</source>
        <translation>No tiene permiso para ello.</translation>
    </message>
    <message>
        <source>The disk is full.</source>
        <translation>El disco está lleno.</translation>
    </message>
    <message>
        <source>You have used up your share of the disk.</source>
        <translation>Ha agotado su cuota de disco.</translation>
    </message>
    <message>
        <source>The file would become larger than the disk allows.</source>
        <translation>El archivo superaría el tamaño que permite el disco.</translation>
    </message>
    <message>
        <source>The disk can only be read.</source>
        <translation>El disco es de solo lectura.</translation>
    </message>
    <message>
        <source>The folder or the file is not there any more.</source>
        <translation>La carpeta o el archivo ya no existe.</translation>
    </message>
    <message>
        <source>“%1” already exists. Do you want to replace it?</source>
        <translation>«%1» ya existe. ¿Desea reemplazar el archivo?</translation>
    </message>
    <message>
        <source>Another program has changed the folder or the file meanwhile.</source>
        <translation>Otro programa ha cambiado entretanto la carpeta o el archivo.</translation>
    </message>
    <message>
        <source>&amp;Look in:</source>
        <translation>&amp;Buscar en:</translation>
    </message>
    <message>
        <source>File &amp;name:</source>
        <translation>&amp;Nombre de archivo:</translation>
    </message>
    <message>
        <source>Files of &amp;type:</source>
        <translation>Archivos de &amp;tipo:</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Tamaño</translation>
    </message>
    <message>
        <source>Date modified</source>
        <translation>Fecha de modificación</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Archivos</translation>
    </message>
    <message>
        <source>Parent Folder</source>
        <translation>Carpeta superior</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>Nueva carpeta</translation>
    </message>
    <message>
        <source>Name of the new folder:</source>
        <translation>Nombre de la nueva carpeta:</translation>
    </message>
    <message>
        <source>Waiting for the folder to answer…</source>
        <translation>Esperando respuesta de la carpeta…</translation>
    </message>
    <message>
        <source>The files cannot be shown</source>
        <translation>No se pueden mostrar los archivos</translation>
    </message>
    <message>
        <source>There is no room for another window</source>
        <translation>No se puede abrir otra ventana</translation>
    </message>
    <message>
        <source>Too many files are open. Close some windows, then try again.</source>
        <translation>Hay demasiados archivos abiertos. Cierre algunas ventanas y vuelva a intentarlo.</translation>
    </message>
    <message>
        <source>%1 can only be overwritten</source>
        <translation>%1 solo se puede sobrescribir</translation>
    </message>
    <message>
        <source>You may not make files in its folder. The old file is copied to the temporary directory first. The copy is kept if writing fails.</source>
        <translation>No tiene permiso para crear archivos en su carpeta. El archivo antiguo se copia antes en el directorio temporal. La copia se conserva si falla la escritura.</translation>
    </message>
    <message>
        <source>&amp;Overwrite</source>
        <translation>&amp;Sobrescribir</translation>
    </message>
    <message>
        <source>There is no such folder.</source>
        <translation>Esa carpeta no existe.</translation>
    </message>
    <message>
        <source>It is not a folder.</source>
        <translation>No es una carpeta.</translation>
    </message>
    <message>
        <source>The temporary directory “%1” cannot be used. %2</source>
        <translation>No se puede usar el directorio temporal «%1». %2</translation>
    </message>
    <message>
        <source>title</source>
        <translation>título</translation>
    </message>
    <message>
        <source>artist</source>
        <translation>artista</translation>
    </message>
    <message>
        <source>album</source>
        <translation>álbum</translation>
    </message>
    <message>
        <source>date</source>
        <translation>fecha</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>comentario</translation>
    </message>
    <message>
        <source>genre</source>
        <translation>género</translation>
    </message>
    <message>
        <source>track</source>
        <translation>número de pista</translation>
    </message>
    <message>
        <source>cover</source>
        <translation>carátula</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 y %2</translation>
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
        <translation>%1 canales</translation>
    </message>
    <message>
        <source>lossless sound</source>
        <translation>sonido sin pérdidas</translation>
    </message>
    <message>
        <source>compressed sound (AAC)</source>
        <translation>sonido comprimido (AAC)</translation>
    </message>
    <message>
        <source>The old file has %1, the new one only has %2.</source>
        <translation>El archivo antiguo tiene %1; el nuevo, solo %2.</translation>
    </message>
    <message>
        <source>16 bits, 44.1 kHz, stereo</source>
        <translation>16 bits, 44,1 kHz, estéreo</translation>
    </message>
    <message>
        <source>AAC with 256 kbit/s, 44.1 kHz, stereo</source>
        <translation>AAC a 256 kbit/s, 44,1 kHz, estéreo</translation>
    </message>
    <message>
        <source>%1; keeps %2</source>
        <translation>%1; conserva %2</translation>
    </message>
    <message>
        <source>%1; leaves out the cover</source>
        <translation>%1; sin la carátula</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Guardar</translation>
    </message>
    <message>
        <source>The file is damaged. What was in it is kept in %1.</source>
        <translation>El archivo está dañado. Su contenido anterior se conserva en %1.</translation>
    </message>
    <message>
        <source>There is a folder of this name.</source>
        <translation>Ya existe una carpeta con ese nombre.</translation>
    </message>
    <message>
        <source>It is not an ordinary file.</source>
        <translation>No es un archivo normal.</translation>
    </message>
    <message>
        <source>The disk could not be read or written.</source>
        <translation>No se pudo leer el disco o escribir en él.</translation>
    </message>
    <message>
        <source>The disk has been removed.</source>
        <translation>Se ha retirado el disco.</translation>
    </message>
    <message>
        <source>The name is too long.</source>
        <translation>El nombre es demasiado largo.</translation>
    </message>
    <message>
        <source>The name is a link that leads back to itself.</source>
        <translation>El nombre es un enlace que remite a sí mismo.</translation>
    </message>
    <message>
        <source>Too many files are open.</source>
        <translation>Hay demasiados archivos abiertos.</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>No hay memoria suficiente.</translation>
    </message>
    <message>
        <source>The computer is too busy just now.</source>
        <translation>El equipo está demasiado ocupado en este momento.</translation>
    </message>
    <message>
        <source>Another program is using it.</source>
        <translation>Otro programa lo está usando.</translation>
    </message>
    <message>
        <source>There is already a file or a folder of this name.</source>
        <translation>Ya hay un archivo o una carpeta con ese nombre.</translation>
    </message>
    <message>
        <source>The disk does not allow it.</source>
        <translation>El disco no lo permite.</translation>
    </message>
    <message>
        <source>The disk does not answer.</source>
        <translation>El disco no responde.</translation>
    </message>
    <message>
        <source>You are not allowed to read %1. Ask its owner, or change its permissions.</source>
        <translation>No tiene permiso para leer %1. Consulte al propietario o cambie los permisos.</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose a sound file inside it.</source>
        <translation>%1 es una carpeta. Elija un archivo de audio que esté dentro.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file, but a device or a connection to another program.</source>
        <translation>%1 no es un archivo normal, sino un dispositivo o una conexión con otro programa.</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 está vacío.</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long.</source>
        <translation>El nombre o la ruta de %1 es demasiado largo.</translation>
    </message>
    <message>
        <source>There is no sound in %1.</source>
        <translation>%1 no contiene sonido.</translation>
    </message>
    <message>
        <source>The sound in %1 is encoded in a way that cannot be read. Up to 8 channels and rates from 1,000 to 768,000 Hz can be.</source>
        <translation>El sonido de %1 está codificado de un modo que no se puede leer. Se admiten hasta 8 canales y frecuencias de muestreo de 1000 a 768&#xa0;000&#xa0;Hz.</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error.</source>
        <translation>El soporte en el que está guardado %1 ha notificado un error.</translation>
    </message>
    <message>
        <source>%1 could not be opened, because too many files are open. Close some windows first.</source>
        <translation>No se pudo abrir %1 porque hay demasiados archivos abiertos. Cierre antes algunas ventanas.</translation>
    </message>
    <message>
        <source>There was not enough memory to read %1.</source>
        <translation>No hay memoria suficiente para leer %1.</translation>
    </message>
    <message>
        <source>%1 cannot be read: FFmpeg’s libraries are missing on this computer.</source>
        <translation>No se puede leer %1: faltan las bibliotecas de FFmpeg en este equipo.</translation>
    </message>
    <message>
        <source>%1 is not a sound file that can be read, or it is damaged.</source>
        <translation>%1 no es un archivo de audio legible o está dañado.</translation>
    </message>
    <message>
        <source>The medium on which %1 is stored reported an error. What could be read before it is kept.</source>
        <translation>El soporte en el que está guardado %1 ha notificado un error. Se conserva lo que se pudo leer antes.</translation>
    </message>
    <message>
        <source>There was not enough memory to read all of %1. What could be read is kept.</source>
        <translation>No hay memoria suficiente para leer %1 por completo. Se conserva lo que se pudo leer.</translation>
    </message>
    <message>
        <source>From some place on the sound in %1 is encoded in a way that cannot be read. What came before it is kept.</source>
        <translation>A partir de cierto punto, el sonido de %1 está codificado de un modo que no se puede leer. Se conserva lo anterior.</translation>
    </message>
    <message>
        <source>%1 can no longer be read. What could be read of it is kept.</source>
        <translation>%1 ya no se puede leer. Se conserva lo que se pudo leer.</translation>
    </message>
    <message>
        <source>%1 is damaged or was cut off. What could be read of it is kept.</source>
        <translation>%1 está dañado o incompleto. Se conserva lo que se pudo leer.</translation>
    </message>
    <message>
        <source>The folder in which %1 was to be written is not there. Choose another one.</source>
        <translation>La carpeta en la que se iba a escribir %1 no existe. Elija otra.</translation>
    </message>
    <message>
        <source>You are not allowed to write %1. Choose another folder, or change the permissions.</source>
        <translation>No tiene permiso para escribir %1. Elija otra carpeta o cambie los permisos.</translation>
    </message>
    <message>
        <source>%1 is a folder. Choose another name.</source>
        <translation>%1 es una carpeta. Elija otro nombre.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file. Choose another name.</source>
        <translation>%1 no es un archivo normal. Elija otro nombre.</translation>
    </message>
    <message>
        <source>The name or the path of %1 is too long. Choose a shorter one.</source>
        <translation>El nombre o la ruta de %1 es demasiado largo. Elija uno más corto.</translation>
    </message>
    <message>
        <source>There is not enough room to write %1. Make room, or choose another disk.</source>
        <translation>No hay espacio suficiente para escribir %1. Libere espacio o elija otro disco.</translation>
    </message>
    <message>
        <source>%1 would be larger than a file of its kind or on this disk may be. Choose another kind of file or another disk.</source>
        <translation>%1 superaría el tamaño permitido para un archivo de este tipo o en este disco. Elija otro tipo de archivo u otro disco.</translation>
    </message>
    <message>
        <source>%1 could not be written, because too many files are open. Close some windows first.</source>
        <translation>No se pudo escribir %1 porque hay demasiados archivos abiertos. Cierre antes algunas ventanas.</translation>
    </message>
    <message>
        <source>There was not enough memory to write %1.</source>
        <translation>No hay memoria suficiente para escribir %1.</translation>
    </message>
    <message>
        <source>%1 cannot be written: FFmpeg’s libraries are missing on this computer.</source>
        <translation>No se puede escribir %1: faltan las bibliotecas de FFmpeg en este equipo.</translation>
    </message>
    <message>
        <source>%1 cannot be written as a file of this kind.</source>
        <translation>%1 no se puede escribir como archivo de este tipo.</translation>
    </message>
    <message>
        <source>The medium on which %1 was to be written reported an error. It may have been removed.</source>
        <translation>El soporte en el que se iba a escribir %1 ha notificado un error. Puede que se haya retirado.</translation>
    </message>
    <message>
        <source>File Format Error</source>
        <translation>Error de formato de archivo</translation>
    </message>
    <message>
        <source>The file is of an unsupported format.</source>
        <translation>El formato del archivo no es compatible.</translation>
    </message>
    <message>
        <source>Core Audio Error</source>
        <translation>Error de Core Audio</translation>
    </message>
    <message>
        <source>Core Audio returned the error: %s (%s)</source>
        <translation>Core Audio ha devuelto el error: %s (%s)</translation>
    </message>
    <message>
        <source>No sound input could be opened. Connect a microphone or another input, check that sound works on this computer, then press Record again. Everything recorded so far is kept.</source>
        <translation>No se pudo abrir ninguna entrada de sonido. Conecte un micrófono u otra entrada, compruebe que el sonido funciona en este equipo y vuelva a pulsar «Grabar». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>La entrada de sonido ha desaparecido: se ha desconectado o el sistema de sonido se ha detenido. La grabación ha terminado. Vuelva a conectar la entrada y pulse «Grabar». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>The sound input has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>La entrada de sonido ha desaparecido: se ha desconectado o el sistema de sonido se ha detenido. Vuelva a conectarla antes de pulsar «Grabar». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Connect it again before you press Record. Everything recorded so far is kept.</source>
        <translation>La entrada de sonido «%1» ha desaparecido: se ha desconectado o el sistema de sonido se ha detenido. Vuelva a conectarla antes de pulsar «Grabar». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>The sound input “%1” has gone: it was unplugged, or the sound system stopped. Recording has ended. Connect the input again, then press Record. Everything recorded so far is kept.</source>
        <translation>La entrada de sonido «%1» ha desaparecido: se ha desconectado o el sistema de sonido se ha detenido. La grabación ha terminado. Vuelva a conectar la entrada y pulse «Grabar». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>No ha llegado nada más de la entrada de sonido: está parada o el sistema de sonido no responde. La grabación ha terminado. Compruebe la entrada y pulse «Grabar». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>Nothing more came from the sound input “%1”: it stands still, or the sound system does not answer. Recording has ended. Check the input, then press Record. Everything recorded so far is kept.</source>
        <translation>No ha llegado nada más de la entrada de sonido «%1»: está parada o el sistema de sonido no responde. La grabación ha terminado. Compruebe la entrada y pulse «Grabar». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>The sound output stands still, or the sound system does not answer. Playback has ended. Check the output, then press Play. Everything recorded so far is kept.</source>
        <translation>La salida de sonido está parada o el sistema de sonido no responde. La reproducción ha terminado. Compruebe la salida y pulse «Reproducir». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>Recording from the default input</source>
        <translation>Grabando de la entrada predeterminada</translation>
    </message>
    <message>
        <source>Recording from %1</source>
        <translation>Grabando de %1</translation>
    </message>
    <message>
        <source>Recording has been paused.</source>
        <translation>La grabación se ha puesto en pausa.</translation>
    </message>
    <message>
        <source>No microphone</source>
        <translation>No hay micrófono</translation>
    </message>
    <message>
        <source>No microphone: recording what this computer plays</source>
        <translation>No hay micrófono: se graba lo que reproduce este equipo</translation>
    </message>
    <message>
        <source>Nothing is coming in</source>
        <translation>No llega ningún sonido</translation>
    </message>
    <message>
        <source>This computer is running out of memory</source>
        <translation>Este equipo se está quedando sin memoria</translation>
    </message>
    <message>
        <source>%1 s were lost at %2</source>
        <translation>Se perdieron %1&#xa0;s en %2</translation>
    </message>
    <message>
        <source>Lost in this recording: %1 s, first at %2</source>
        <translation>Perdido en esta grabación: %1&#xa0;s, primero en %2</translation>
    </message>
    <message>
        <source>Lost sound</source>
        <translation>Sonido perdido</translation>
    </message>
    <message>
        <source>The system allows no further thread. Close some windows or other programs, then try again. Everything recorded so far is kept.</source>
        <translation>El sistema no permite más hilos. Cierre algunas ventanas u otros programas y vuelva a intentarlo. Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>No sound output could be opened. Connect loudspeakers or headphones, check that sound works on this computer, then press Play again. Everything recorded so far is kept.</source>
        <translation>No se pudo abrir ninguna salida de sonido. Conecte unos altavoces o auriculares, compruebe que el sonido funciona en este equipo y vuelva a pulsar «Reproducir». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>The sound output has gone: it was unplugged, or the sound system stopped. Playback has ended. Connect the output again, then press Play. Everything recorded so far is kept.</source>
        <translation>La salida de sonido ha desaparecido: se ha desconectado o el sistema de sonido se ha detenido. La reproducción ha terminado. Vuelva a conectar la salida y pulse «Reproducir». Se conserva todo lo grabado hasta ahora.</translation>
    </message>
    <message>
        <source>no queue on record!</source>
        <translation>¡No hay cola para la grabación!</translation>
    </message>
    <message>
        <source>this shouldn't happen. contact </source>
        <translation>Esto no debería ocurrir. Contacte con </translation>
    </message>
</context>
</TS>

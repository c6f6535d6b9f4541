<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>AboutDialog</name>
    <message>
        <source>Zephrimark Offload %1</source>
        <translation>Zephrimark Offload %1</translation>
    </message>
    <message>
        <source>Copies cards to several drives at once, reads every copy back and compares it with the card.

Made with:</source>
        <translation>Kopiert Karten auf mehrere Laufwerke zugleich, liest jede Kopie zurück und vergleicht sie mit der Karte.

Erstellt mit:</translation>
    </message>
</context>
<context>
    <name>AppMenu</name>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>About Zephrimark Offload</source>
        <translation>Über Zephrimark Offload</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <translation>Nach Updates suchen …</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
</context>
<context>
    <name>CardSection</name>
    <message>
        <source>Card</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>Use a Folder…</source>
        <translation>Ordner verwenden …</translation>
    </message>
</context>
<context>
    <name>ChecksSection</name>
    <message>
        <source>Checks</source>
        <translation>Prüfung</translation>
    </message>
    <message>
        <source>Every copy is read back from the drive and compared with the card. Checksums are saved in each folder as an ASC MHL file.</source>
        <translation>Jede Kopie wird vom Laufwerk zurückgelesen und mit der Karte verglichen. Die Prüfsummen werden in jedem Ordner als ASC-MHL-Datei gespeichert.</translation>
    </message>
    <message>
        <source>Checksum</source>
        <translation>Prüfsumme</translation>
    </message>
    <message>
        <source>Read the card twice</source>
        <translation>Karte zweimal lesen</translation>
    </message>
    <message>
        <source>Reads every file from the card a second time and compares, to catch a failing card or reader.</source>
        <translation>Liest jede Datei ein zweites Mal von der Karte und vergleicht, um Defekte von Karte oder Lesegerät zu erkennen.</translation>
    </message>
    <message>
        <source>Eject the card when verified</source>
        <translation>Karte auswerfen, wenn alles geprüft ist</translation>
    </message>
    <message>
        <source>Save a card image for Kestrine</source>
        <translation>Kartenabbild für Kestrine speichern</translation>
    </message>
</context>
<context>
    <name>ConfirmDialog</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>DestinationRow</name>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
</context>
<context>
    <name>DestinationSection</name>
    <message>
        <source>Copy to</source>
        <translation>Ziele</translation>
    </message>
    <message>
        <source>Up to 3 drives, written at the same time</source>
        <translation>Bis zu 3 Laufwerke, gleichzeitig beschrieben</translation>
    </message>
    <message>
        <source>Choose Folder…</source>
        <translation>Ordner wählen …</translation>
    </message>
</context>
<context>
    <name>DoneScreen</name>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Took</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Checksum</source>
        <translation>Prüfsumme</translation>
    </message>
    <message>
        <source>Card image</source>
        <translation>Kartenabbild</translation>
    </message>
    <message>
        <source>Could not be read from the card</source>
        <translation>Konnte nicht von der Karte gelesen werden</translation>
    </message>
    <message>
        <source>There may be more on the card than was copied. Don&apos;t erase it; try another reader, or look for the files with a card image.</source>
        <translation>Auf der Karte kann mehr sein, als kopiert wurde. Löschen Sie sie nicht: Versuchen Sie ein anderes Lesegerät, oder suchen Sie die Dateien mit einem Kartenabbild.</translation>
    </message>
    <message>
        <source>Not verified everywhere</source>
        <translation>Nicht überall geprüft</translation>
    </message>
    <message>
        <source>Open Report</source>
        <translation>Bericht öffnen</translation>
    </message>
    <message>
        <source>Eject Card</source>
        <translation>Karte auswerfen</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Erneut versuchen</translation>
    </message>
    <message>
        <source>Runs the offload again. Files already verified are checked, not copied again.</source>
        <translation>Führt die Sicherung noch einmal aus. Bereits geprüfte Dateien werden nur kontrolliert, nicht noch einmal kopiert.</translation>
    </message>
    <message>
        <source>New Offload</source>
        <translation>Neue Sicherung</translation>
    </message>
</context>
<context>
    <name>DropZones</name>
    <message>
        <source>Offload this</source>
        <translation>Von hier sichern</translation>
    </message>
    <message>
        <source>Copy here</source>
        <translation>Hierhin kopieren</translation>
    </message>
</context>
<context>
    <name>Errors</name>
    <message>
        <source>%1 is on the card itself. Choose a different drive.</source>
        <translation>%1 liegt auf der Karte selbst. Wählen Sie ein anderes Laufwerk.</translation>
    </message>
    <message>
        <source>%1 isn&apos;t available or can&apos;t be written to.</source>
        <translation>%1 ist nicht verfügbar oder kann nicht beschrieben werden.</translation>
    </message>
    <message>
        <source>%1 is already being copied to. Choose another folder, or wait until that is finished.</source>
        <translation>Nach %1 wird bereits kopiert. Wählen Sie einen anderen Ordner, oder warten Sie, bis das beendet ist.</translation>
    </message>
    <message>
        <source>%1 needs %2 free but has %3.</source>
        <translation>%1 braucht %2 freien Platz, hat aber nur %3.</translation>
    </message>
    <message>
        <source>The card couldn&apos;t be opened for the card image: %1 Turn off the card image to offload without it.</source>
        <translation>Die Karte konnte für das Kartenabbild nicht geöffnet werden: %1 Schalten Sie das Kartenabbild aus, um ohne es zu sichern.</translation>
    </message>
    <message>
        <source>There are no files on the card to offload.</source>
        <translation>Auf der Karte sind keine Dateien, die gesichert werden könnten.</translation>
    </message>
    <message>
        <source>The offload was stopped.</source>
        <translation>Die Sicherung wurde angehalten.</translation>
    </message>
    <message>
        <source>Not copied</source>
        <translation>Nicht kopiert</translation>
    </message>
    <message>
        <source>The copy couldn&apos;t be read back</source>
        <translation>Die Kopie konnte nicht zurückgelesen werden</translation>
    </message>
    <message>
        <source>The copy didn&apos;t match the original</source>
        <translation>Die Kopie stimmt nicht mit dem Original überein</translation>
    </message>
    <message>
        <source>A link in the destination folder leads to another place</source>
        <translation>Eine Verknüpfung im Zielordner führt an einen anderen Ort</translation>
    </message>
    <message>
        <source>A different file with this name is already in the destination folder</source>
        <translation>Im Zielordner ist bereits eine andere Datei mit diesem Namen</translation>
    </message>
    <message>
        <source>This is the card&apos;s own file, not a copy of it</source>
        <translation>Das ist die Datei der Karte selbst, keine Kopie davon</translation>
    </message>
    <message>
        <source>No permission to write here</source>
        <translation>Keine Berechtigung, hier zu schreiben</translation>
    </message>
    <message>
        <source>The drive reported a write error</source>
        <translation>Das Laufwerk hat einen Schreibfehler gemeldet</translation>
    </message>
    <message>
        <source>The drive was disconnected</source>
        <translation>Das Laufwerk wurde getrennt</translation>
    </message>
    <message>
        <source>The drive is full</source>
        <translation>Das Laufwerk ist voll</translation>
    </message>
    <message>
        <source>The card couldn&apos;t be read: %1</source>
        <translation>Die Karte konnte nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>couldn&apos;t list its files</source>
        <translation>Ihre Dateien konnten nicht aufgelistet werden</translation>
    </message>
    <message>
        <source>%1 changed size while it was being read</source>
        <translation>%1 hat beim Lesen die Größe geändert</translation>
    </message>
    <message>
        <source>%1 read differently the second time. The card or reader may be failing.</source>
        <translation>%1 war beim zweiten Lesen anders. Karte oder Lesegerät sind möglicherweise defekt.</translation>
    </message>
    <message>
        <source>An image with this name is already there</source>
        <translation>Ein Abbild mit diesem Namen ist bereits vorhanden</translation>
    </message>
    <message>
        <source>The card stopped responding</source>
        <translation>Die Karte antwortet nicht mehr</translation>
    </message>
    <message>
        <source>The image couldn&apos;t be read back</source>
        <translation>Das Abbild konnte nicht zurückgelesen werden</translation>
    </message>
    <message>
        <source>The image didn&apos;t match what was read from the card</source>
        <translation>Das Abbild stimmt nicht mit dem überein, was von der Karte gelesen wurde</translation>
    </message>
    <message>
        <source>Could not open %1: %2</source>
        <translation>%1 konnte nicht geöffnet werden: %2</translation>
    </message>
    <message>
        <source>Authorization to read %1 was denied.</source>
        <translation>Die Berechtigung, %1 zu lesen, wurde verweigert.</translation>
    </message>
    <message>
        <source>%1 is not a readable file or device.</source>
        <translation>%1 ist keine lesbare Datei und kein lesbares Gerät.</translation>
    </message>
    <message>
        <source>Read failed at offset %1: %2</source>
        <translation>Lesefehler an Position %1: %2</translation>
    </message>
    <message>
        <source>%1 is unmounted and can be taken out, but its drive did not eject it.</source>
        <translation>%1 ist ausgehängt und kann entnommen werden, aber das Laufwerk hat die Karte nicht ausgeworfen.</translation>
    </message>
    <message>
        <source>%1 couldn&apos;t be ejected because a program is still using it. Close what uses it, then try again.</source>
        <translation>%1 konnte nicht ausgeworfen werden, weil ein Programm noch darauf zugreift. Schließen Sie es, und versuchen Sie es dann erneut.</translation>
    </message>
    <message>
        <source>Permission to eject %1 was declined. Unmount it before you take it out.</source>
        <translation>Die Erlaubnis, %1 auszuwerfen, wurde verweigert. Hängen Sie die Karte aus, bevor Sie sie entnehmen.</translation>
    </message>
    <message>
        <source>There is no service on this computer that can eject %1. It is still mounted; unmount it before you take it out.</source>
        <translation>Auf diesem Computer gibt es keinen Dienst, der %1 auswerfen kann. Die Karte ist noch eingehängt; hängen Sie sie aus, bevor Sie sie entnehmen.</translation>
    </message>
    <message>
        <source>%1 reported an error while it was unmounted. Try again before you take it out.</source>
        <translation>%1 hat beim Aushängen einen Fehler gemeldet. Versuchen Sie es erneut, bevor Sie die Karte entnehmen.</translation>
    </message>
    <message>
        <source>There is no single disk under %1 that could be ejected. If it is mounted, unmount it before you take it out.</source>
        <translation>Hinter %1 steht kein einzelner Datenträger, der ausgeworfen werden könnte. Falls die Karte eingehängt ist, hängen Sie sie aus, bevor Sie sie entnehmen.</translation>
    </message>
    <message>
        <source>%1 is not on a memory card or an external drive. It was not ejected.</source>
        <translation>%1 liegt nicht auf einer Speicherkarte oder einem externen Laufwerk und wurde nicht ausgeworfen.</translation>
    </message>
    <message>
        <source>%1 is not mounted any more, so it was not ejected.</source>
        <translation>%1 ist nicht mehr eingehängt und wurde deshalb nicht ausgeworfen.</translation>
    </message>
    <message>
        <source>The card was not ejected because not everything is verified.</source>
        <translation>Die Karte wurde nicht ausgeworfen, weil nicht alles geprüft ist.</translation>
    </message>
    <message>
        <source>Bad message</source>
        <translation>Ungültige Nachricht</translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation>Nicht genügend Arbeitsspeicher</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>Zeitüberschreitung der Verbindung</translation>
    </message>
    <message>
        <source>Device or resource busy</source>
        <translation>Gerät oder Ressource wird benutzt</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>Das Speicherkontingent ist überschritten</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>Die Datei ist bereits vorhanden</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>Der Dateiname ist zu lang</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>Die Datei ist zu groß</translation>
    </message>
    <message>
        <source>Host is down</source>
        <translation>Der Rechner ist nicht erreichbar</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Eingabe-/Ausgabefehler</translation>
    </message>
    <message>
        <source>Invalid argument</source>
        <translation>Ungültiges Argument</translation>
    </message>
    <message>
        <source>Invalid or incomplete multibyte or wide character</source>
        <translation>Ungültiges oder unvollständiges Zeichen</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>Ist ein Ordner</translation>
    </message>
    <message>
        <source>No data available</source>
        <translation>Keine Daten verfügbar</translation>
    </message>
    <message>
        <source>No medium found</source>
        <translation>Kein Datenträger gefunden</translation>
    </message>
    <message>
        <source>No such device</source>
        <translation>Kein solches Gerät</translation>
    </message>
    <message>
        <source>No such device or address</source>
        <translation>Kein solches Gerät oder keine solche Adresse</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Datei oder Ordner nicht gefunden</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>Ist kein Ordner</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Vorgang nicht erlaubt</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Keine Berechtigung</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>Das Dateisystem ist schreibgeschützt</translation>
    </message>
    <message>
        <source>Remote I/O error</source>
        <translation>Eingabe-/Ausgabefehler der Gegenseite</translation>
    </message>
    <message>
        <source>Resource temporarily unavailable</source>
        <translation>Die Ressource ist vorübergehend nicht verfügbar</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>Die Datei ist nicht mehr gültig</translation>
    </message>
    <message>
        <source>Structure needs cleaning</source>
        <translation>Das Dateisystem muss repariert werden</translation>
    </message>
    <message>
        <source>Too many levels of symbolic links</source>
        <translation>Zu viele Ebenen symbolischer Verknüpfungen</translation>
    </message>
    <message>
        <source>Too many links</source>
        <translation>Zu viele Verknüpfungen</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Zu viele offene Dateien</translation>
    </message>
    <message>
        <source>Too many open files in system</source>
        <translation>Zu viele offene Dateien im System</translation>
    </message>
    <message>
        <source>Transport endpoint is not connected</source>
        <translation>Die Verbindung zum Laufwerk besteht nicht mehr</translation>
    </message>
    <message>
        <source>Value too large for defined data type</source>
        <translation>Der Wert ist zu groß</translation>
    </message>
    <message>
        <source>Another card is in its place now.</source>
        <translation>Dort steckt jetzt eine andere Karte.</translation>
    </message>
    <message>
        <source>The card was not ejected because the result could not be written.</source>
        <translation>Die Karte wurde nicht ausgeworfen, weil das Ergebnis nicht ausgegeben werden konnte.</translation>
    </message>
</context>
<context>
    <name>EventList</name>
    <message>
        <source>So far</source>
        <translation>Bisher</translation>
    </message>
</context>
<context>
    <name>FailedScreen</name>
    <message>
        <source>The offload couldn&apos;t start</source>
        <translation>Die Sicherung konnte nicht beginnen</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
</context>
<context>
    <name>FolderSection</name>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Files go into</source>
        <translation>Die Dateien kommen nach</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Folder template</source>
        <translation>Ordnervorlage</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projekt</translation>
    </message>
</context>
<context>
    <name>Main</name>
    <message>
        <source>Zephrimark Offload</source>
        <translation>Zephrimark Offload</translation>
    </message>
    <message>
        <source>Copy cards to several drives and check every file</source>
        <translation>Karten auf mehrere Laufwerke kopieren und jede Datei prüfen</translation>
    </message>
    <message>
        <source>Stop the offload?</source>
        <translation>Sicherung anhalten?</translation>
    </message>
    <message>
        <source>Files already verified stay on the drives. Start again with the same card and drives to pick up where it left off.</source>
        <translation>Bereits geprüfte Dateien bleiben auf den Laufwerken. Starten Sie mit derselben Karte und denselben Laufwerken neu, um dort fortzufahren.</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Keep Going</source>
        <translation>Fortfahren</translation>
    </message>
    <message>
        <source>Not Now</source>
        <translation>Nicht jetzt</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Open Download Page</source>
        <translation>Download-Seite öffnen</translation>
    </message>
</context>
<context>
    <name>MessageDialog</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>Notice</name>
    <message>
        <source>Offload finished with problems</source>
        <translation>Sicherung mit Problemen beendet</translation>
    </message>
    <message numerus="yes">
        <source>%1: %2 file(s) weren&apos;t verified on every drive.</source>
        <comment>%1: %2 file(s) weren&apos;t verified on every drive.</comment>
        <translation>
            <numerusform>%1: %2 Datei wurde nicht auf jedem Laufwerk geprüft.</numerusform>
            <numerusform>%1: %2 Dateien wurden nicht auf jedem Laufwerk geprüft.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1: %2 item(s) couldn&apos;t be read from the card.</source>
        <comment>%1: %2 item(s) couldn&apos;t be read from the card.</comment>
        <translation>
            <numerusform>%1: %2 Objekt konnte nicht von der Karte gelesen werden.</numerusform>
            <numerusform>%1: %2 Objekte konnten nicht von der Karte gelesen werden.</numerusform>
        </translation>
    </message>
    <message>
        <source>Offload verified</source>
        <translation>Sicherung geprüft</translation>
    </message>
    <message numerus="yes">
        <source>%1: %2, %3, checked on %4 drives.</source>
        <comment>%1: %2, %3, checked on %4 drive.</comment>
        <translation>
            <numerusform>%1: %2, %3, auf %4 Laufwerk geprüft.</numerusform>
            <numerusform>%1: %2, %3, auf %4 Laufwerken geprüft.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 files</source>
        <comment>%1 files</comment>
        <translation>
            <numerusform>%1 Datei</numerusform>
            <numerusform>%1 Dateien</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>Numbers</name>
    <message>
        <source>%1 KB</source>
        <translation>%1&#xa0;KB</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1&#xa0;MB</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1&#xa0;GB</translation>
    </message>
    <message>
        <source>%1 TB</source>
        <translation>%1&#xa0;TB</translation>
    </message>
    <message>
        <source>%1 PB</source>
        <translation>%1&#xa0;PB</translation>
    </message>
    <message>
        <source>%1 EB</source>
        <translation>%1&#xa0;EB</translation>
    </message>
    <message>
        <source>Zero KB</source>
        <translation>0&#xa0;KB</translation>
    </message>
    <message numerus="yes">
        <source>%1 bytes</source>
        <comment>%1 byte</comment>
        <translation>
            <numerusform>%1&#xa0;Byte</numerusform>
            <numerusform>%1&#xa0;Bytes</numerusform>
        </translation>
    </message>
    <message>
        <source>.</source>
        <translation>,</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1&#xa0;h %2&#xa0;min</translation>
    </message>
    <message>
        <source>%1 min %2 s</source>
        <translation>%1&#xa0;min %2&#xa0;s</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1&#xa0;s</translation>
    </message>
    <message>
        <source>%1/s</source>
        <translation>%1/s</translation>
    </message>
    <message>
        <source>,</source>
        <translation>.</translation>
    </message>
</context>
<context>
    <name>Platform</name>
    <message>
        <source>This Mac</source>
        <translation>Dieser Mac</translation>
    </message>
    <message>
        <source>Every copy is on this Mac&apos;s own disk. Add an external drive so the footage isn&apos;t on one disk only.</source>
        <translation>Alle Kopien liegen auf der Festplatte dieses Mac. Fügen Sie ein externes Laufwerk hinzu, damit das Material nicht nur auf einem Datenträger liegt.</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Im Finder zeigen</translation>
    </message>
    <message>
        <source>A sector-by-sector copy of the whole card, including deleted space. If something turns out to be missing later, Zephrimark Kestrine can search the image, even after the card is reused. macOS asks for your password to read the card directly.</source>
        <translation>Eine Kopie der ganzen Karte, Sektor für Sektor, mit gelöschten Bereichen. Falls später etwas fehlt, kann Zephrimark Kestrine das Abbild durchsuchen, auch wenn die Karte schon wieder benutzt wurde. macOS fragt nach Ihrem Passwort, um die Karte direkt zu lesen.</translation>
    </message>
    <message>
        <source>This Computer</source>
        <translation>Dieser Computer</translation>
    </message>
    <message>
        <source>Every copy is on this computer&apos;s own disk. Add an external drive so the footage isn&apos;t on one disk only.</source>
        <translation>Alle Kopien liegen auf der Festplatte dieses Computers. Fügen Sie ein externes Laufwerk hinzu, damit das Material nicht nur auf einem Datenträger liegt.</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>In „Dateien“ zeigen</translation>
    </message>
    <message>
        <source>A sector-by-sector copy of the whole card, including deleted space. If something turns out to be missing later, Zephrimark Kestrine can search the image, even after the card is reused. Your password may be asked for to read the card directly.</source>
        <translation>Eine Kopie der ganzen Karte, Sektor für Sektor, mit gelöschten Bereichen. Falls später etwas fehlt, kann Zephrimark Kestrine das Abbild durchsuchen, auch wenn die Karte schon wieder benutzt wurde. Um die Karte direkt zu lesen, wird eventuell Ihr Passwort verlangt.</translation>
    </message>
</context>
<context>
    <name>Progress</name>
    <message numerus="yes">
        <source>Copying to %1 drives and checking each copy</source>
        <comment>Copying to %1 drive and checking each copy</comment>
        <translation>
            <numerusform>Kopiert auf %1 Laufwerk und prüft jede Kopie</numerusform>
            <numerusform>Kopiert auf %1 Laufwerke und prüft jede Kopie</numerusform>
        </translation>
    </message>
    <message>
        <source>Reading the copies back and comparing</source>
        <translation>Liest die Kopien zurück und vergleicht</translation>
    </message>
    <message>
        <source>Saving the card image for Kestrine and checking it</source>
        <translation>Speichert das Kartenabbild für Kestrine und prüft es</translation>
    </message>
    <message>
        <source>Writing the report and checksums</source>
        <translation>Schreibt Bericht und Prüfsummen</translation>
    </message>
    <message>
        <source>Reading the card…</source>
        <translation>Karte wird gelesen …</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Working it out…</source>
        <translation>Wird berechnet …</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>Etwa %1</translation>
    </message>
    <message>
        <source>%1 verified</source>
        <translation>%1 geprüft</translation>
    </message>
    <message>
        <source>%1 verified · %2 not verified: %3</source>
        <translation>%1 geprüft · %2 nicht geprüft: %3</translation>
    </message>
    <message>
        <source>Copying %1</source>
        <translation>%1 wird kopiert</translation>
    </message>
    <message>
        <source>All files are done, the card image is next</source>
        <translation>Alle Dateien sind fertig, als Nächstes das Kartenabbild</translation>
    </message>
    <message>
        <source>Everything is copied and compared</source>
        <translation>Alles ist kopiert und verglichen</translation>
    </message>
    <message>
        <source>All files are done, some are not verified</source>
        <translation>Alle Dateien sind fertig, einige nicht geprüft</translation>
    </message>
    <message numerus="yes">
        <source>Found %1 files, %2</source>
        <comment>Found %1 files, %2</comment>
        <translation>
            <numerusform>%1 Datei gefunden, %2</numerusform>
            <numerusform>%1 Dateien gefunden, %2</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ProgressLine</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>%1 percent</source>
        <translation>%1 Prozent</translation>
    </message>
</context>
<context>
    <name>Result</name>
    <message>
        <source>Every file from %1 was copied and read back identical on both drives.</source>
        <translation>Jede Datei von %1 wurde kopiert und auf beiden Laufwerken identisch zurückgelesen.</translation>
    </message>
    <message numerus="yes">
        <source>Every file from %1 was copied and read back identical on all %2 drives.</source>
        <comment>Every file from %1 was copied and read back identical on the drive.</comment>
        <translation>
            <numerusform>Jede Datei von %1 wurde kopiert und auf dem Laufwerk identisch zurückgelesen.</numerusform>
            <numerusform>Jede Datei von %1 wurde kopiert und auf allen %2 Laufwerken identisch zurückgelesen.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 verified · open it in Zephrimark Kestrine to look for deleted files</source>
        <translation>%1 geprüft · öffnen Sie es in Zephrimark Kestrine, um gelöschte Dateien zu suchen</translation>
    </message>
    <message numerus="yes">
        <source>%1 verified · %2 unreadable blocks saved as zeros · open it in Zephrimark Kestrine to look for deleted files</source>
        <comment>%1 verified · %2 unreadable blocks saved as zeros · open it in Zephrimark Kestrine to look for deleted files</comment>
        <translation>
            <numerusform>%1 geprüft · %2 unlesbarer Block als Nullen gespeichert · öffnen Sie es in Zephrimark Kestrine, um gelöschte Dateien zu suchen</numerusform>
            <numerusform>%1 geprüft · %2 unlesbare Blöcke als Nullen gespeichert · öffnen Sie es in Zephrimark Kestrine, um gelöschte Dateien zu suchen</numerusform>
        </translation>
    </message>
    <message>
        <source>Some files weren&apos;t verified</source>
        <translation>Einige Dateien sind nicht geprüft</translation>
    </message>
    <message>
        <source>Some of the card couldn&apos;t be read</source>
        <translation>Ein Teil der Karte war nicht lesbar</translation>
    </message>
    <message>
        <source>Offload verified</source>
        <translation>Sicherung geprüft</translation>
    </message>
    <message numerus="yes">
        <source>%1 files didn&apos;t make it onto every drive. Don&apos;t erase the card yet.</source>
        <comment>%1 file didn&apos;t make it onto every drive. Don&apos;t erase the card yet.</comment>
        <translation>
            <numerusform>%1 Datei ist nicht auf jedem Laufwerk angekommen. Löschen Sie die Karte noch nicht.</numerusform>
            <numerusform>%1 Dateien sind nicht auf jedem Laufwerk angekommen. Löschen Sie die Karte noch nicht.</numerusform>
        </translation>
    </message>
    <message>
        <source>Every file that could be listed is verified, but there may be more. Don&apos;t erase the card yet.</source>
        <translation>Jede Datei, die gefunden wurde, ist geprüft, aber es kann weitere geben. Löschen Sie die Karte noch nicht.</translation>
    </message>
    <message>
        <source>%1, card read twice</source>
        <translation>%1, Karte zweimal gelesen</translation>
    </message>
    <message>
        <source>%1 of %2 verified</source>
        <translation>%1 von %2 geprüft</translation>
    </message>
    <message>
        <source>%1 of %2 verified · stopped: %3</source>
        <translation>%1 von %2 geprüft · abgebrochen: %3</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>The whole card</source>
        <translation>Die ganze Karte</translation>
    </message>
    <message numerus="yes">
        <source>…and %1 more, listed in the report.</source>
        <comment>…and %1 more, listed in the report.</comment>
        <translation>
            <numerusform>… und %1 weitere, im Bericht aufgeführt.</numerusform>
            <numerusform>… und %1 weitere, im Bericht aufgeführt.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 of %2 verified · read back through this computer&apos;s cache</source>
        <translation>%1 von %2 geprüft · über den Cache dieses Computers zurückgelesen</translation>
    </message>
    <message>
        <source>The report could not be written to %1: %2</source>
        <translation>Der Bericht konnte nicht nach %1 geschrieben werden: %2</translation>
    </message>
    <message>
        <source>The hash list could not be written to %1: %2</source>
        <translation>Die Hash-Liste konnte nicht nach %1 geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>RunningScreen</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Restzeit</translation>
    </message>
    <message>
        <source>Now</source>
        <translation>Jetzt</translation>
    </message>
    <message>
        <source>Stopping after this step…</source>
        <translation>Hält nach diesem Schritt an …</translation>
    </message>
    <message>
        <source>Keep the card and drives connected until the offload is verified.</source>
        <translation>Lassen Sie Karte und Laufwerke angeschlossen, bis die Sicherung geprüft ist.</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
</context>
<context>
    <name>SectionTitle</name>
    <message>
        <source>Complete</source>
        <translation>Vollständig</translation>
    </message>
    <message>
        <source>Complete. %1</source>
        <translation>Vollständig. %1</translation>
    </message>
</context>
<context>
    <name>Setup</name>
    <message>
        <source>Date of the offload, 2026-10-07</source>
        <translation>Datum der Sicherung, 2026-10-07</translation>
    </message>
    <message>
        <source>Time of the offload, 1432</source>
        <translation>Uhrzeit der Sicherung, 1432</translation>
    </message>
    <message>
        <source>The card&apos;s name, EOS_DIGITAL</source>
        <translation>Name der Karte, EOS_DIGITAL</translation>
    </message>
    <message>
        <source>Camera brand, from the card&apos;s folders</source>
        <translation>Kameramarke, aus den Ordnern der Karte</translation>
    </message>
    <message>
        <source>The project name you type</source>
        <translation>Der Projektname, den Sie eingeben</translation>
    </message>
    <message>
        <source>Ejecting the card…</source>
        <translation>Die Karte wird ausgeworfen …</translation>
    </message>
    <message>
        <source>Ejected %1. You can take it out now.</source>
        <translation>%1 ist ausgeworfen. Sie können die Karte jetzt entnehmen.</translation>
    </message>
    <message>
        <source>Waiting for %1 to answer…</source>
        <translation>Wartet auf eine Antwort von %1 …</translation>
    </message>
    <message>
        <source>%1 doesn&apos;t have room for this card and its card image.</source>
        <translation>Auf %1 ist nicht genug Platz für diese Karte und ihr Kartenabbild.</translation>
    </message>
    <message>
        <source>%1 doesn&apos;t have room for this card.</source>
        <translation>Auf %1 ist nicht genug Platz für diese Karte.</translation>
    </message>
    <message>
        <source>Choose a card to offload.</source>
        <translation>Wählen Sie die Karte, die gesichert werden soll.</translation>
    </message>
    <message>
        <source>Add at least one drive to copy to.</source>
        <translation>Fügen Sie mindestens ein Ziellaufwerk hinzu.</translation>
    </message>
    <message>
        <source>Reading the card…</source>
        <translation>Karte wird gelesen …</translation>
    </message>
    <message>
        <source>%1 used of %2</source>
        <translation>%1 von %2 belegt</translation>
    </message>
    <message>
        <source>Top level of the drive</source>
        <translation>Oberste Ebene des Laufwerks</translation>
    </message>
    <message>
        <source>%1 free</source>
        <translation>%1 frei</translation>
    </message>
    <message numerus="yes">
        <source>on each drive</source>
        <comment>on the drive</comment>
        <translation>
            <numerusform>auf dem Laufwerk</numerusform>
            <numerusform>auf jedem Laufwerk</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 on %2</source>
        <translation>%1 auf %2</translation>
    </message>
    <message>
        <source>Available when offloading a whole card.</source>
        <translation>Verfügbar, wenn eine ganze Karte gesichert wird.</translation>
    </message>
    <message numerus="yes">
        <source>%1 to %2 drives</source>
        <comment>%1 to %2 drive</comment>
        <translation>
            <numerusform>%1 auf %2 Laufwerk</numerusform>
            <numerusform>%1 auf %2 Laufwerke</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 files · %2</source>
        <comment>%1 files · %2</comment>
        <translation>
            <numerusform>%1 Datei · %2</numerusform>
            <numerusform>%1 Dateien · %2</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>SetupScreen</name>
    <message>
        <source>Start Offload</source>
        <translation>Sicherung starten</translation>
    </message>
    <message>
        <source>Choose a card or folder to offload. It&apos;s only read, never changed.</source>
        <translation>Wählen Sie die Karte oder den Ordner zum Sichern. Es wird nur gelesen, nie etwas verändert.</translation>
    </message>
    <message>
        <source>Offload This</source>
        <translation>Diese sichern</translation>
    </message>
    <message>
        <source>Choose a drive or folder to copy to.</source>
        <translation>Wählen Sie ein Laufwerk oder einen Ordner als Ziel.</translation>
    </message>
    <message>
        <source>Copy Here</source>
        <translation>Hierhin kopieren</translation>
    </message>
</context>
<context>
    <name>Spinner</name>
    <message>
        <source>Busy</source>
        <translation>Beschäftigt</translation>
    </message>
</context>
<context>
    <name>Start</name>
    <message>
        <source>Usage: zephrimark-offload [-ZMSource FOLDER] [-ZMDestinations FOLDER[:FOLDER...]]
                          [-ZMAutoStart YES]
Opens the window of Zephrimark Offload, with a source and destinations already chosen if
they are given; with -ZMAutoStart YES the offload starts after a second, when it can.
On the command line, use zephrimark.</source>
        <translation>Aufruf: zephrimark-offload [-ZMSource ORDNER] [-ZMDestinations ORDNER[:ORDNER...]]
                           [-ZMAutoStart YES]
Öffnet das Fenster von Zephrimark Offload, mit Quelle und Zielen bereits gewählt, wenn sie
angegeben sind; mit -ZMAutoStart YES beginnt die Sicherung nach einer Sekunde, sofern sie
kann. Auf der Befehlszeile verwenden Sie zephrimark.</translation>
    </message>
    <message>
        <source>Zephrimark Offload is already running; its window was brought to the front.</source>
        <translation>Zephrimark Offload läuft bereits; das Fenster wurde nach vorn geholt.</translation>
    </message>
    <message>
        <source>Zephrimark Offload is already running but does not answer. End it first.</source>
        <translation>Zephrimark Offload läuft bereits, antwortet aber nicht. Beenden Sie es zuerst.</translation>
    </message>
    <message>
        <source>The window could not be made. The installation is damaged.</source>
        <translation>Das Fenster konnte nicht geöffnet werden. Die Installation ist beschädigt.</translation>
    </message>
    <message>
        <source>There is no screen to open a window on. On the command line, use zephrimark.</source>
        <translation>Es gibt keinen Bildschirm für ein Fenster. Auf der Befehlszeile verwenden Sie zephrimark.</translation>
    </message>
</context>
<context>
    <name>StepBar</name>
    <message>
        <source>Step %1 of %2: %3. %4</source>
        <translation>Schritt %1 von %2: %3. %4</translation>
    </message>
</context>
<context>
    <name>Steps</name>
    <message>
        <source>Some files weren&apos;t verified on every drive. Don&apos;t format the card yet.</source>
        <translation>Einige Dateien sind nicht auf jedem Laufwerk geprüft. Formatieren Sie die Karte noch nicht.</translation>
    </message>
    <message>
        <source>Some of the card couldn&apos;t be read. Don&apos;t format the card yet.</source>
        <translation>Ein Teil der Karte war nicht lesbar. Formatieren Sie die Karte noch nicht.</translation>
    </message>
    <message>
        <source>Every file is verified on every drive. Check the report before you format the card.</source>
        <translation>Jede Datei ist auf jedem Laufwerk geprüft. Sehen Sie in den Bericht, bevor Sie die Karte formatieren.</translation>
    </message>
    <message>
        <source>Writing the report and checksums.</source>
        <translation>Bericht und Prüfsummen werden geschrieben.</translation>
    </message>
    <message>
        <source>Saving the card image for Kestrine, then checking it.</source>
        <translation>Das Kartenabbild für Kestrine wird gespeichert und dann geprüft.</translation>
    </message>
    <message>
        <source>Reading every copy back from the drives and comparing it with the card.</source>
        <translation>Jede Kopie wird von den Laufwerken zurückgelesen und mit der Karte verglichen.</translation>
    </message>
    <message numerus="yes">
        <source>Copying %1 to %2 drives. Keep everything connected.</source>
        <comment>Copying %1 to %2 drive. Keep everything connected.</comment>
        <translation>
            <numerusform>%1 wird auf %2 Laufwerk kopiert. Lassen Sie alles angeschlossen.</numerusform>
            <numerusform>%1 wird auf %2 Laufwerke kopiert. Lassen Sie alles angeschlossen.</numerusform>
        </translation>
    </message>
    <message>
        <source>Insert a card, or choose a folder to offload.</source>
        <translation>Legen Sie eine Karte ein, oder wählen Sie einen Ordner zum Sichern.</translation>
    </message>
    <message>
        <source>Add the drives to copy to. Two is safer than one.</source>
        <translation>Fügen Sie die Ziellaufwerke hinzu. Zwei sind sicherer als eines.</translation>
    </message>
    <message>
        <source>Ready. Check the folder name, then press Start Offload.</source>
        <translation>Bereit. Prüfen Sie den Ordnernamen, und klicken Sie auf „Sicherung starten“.</translation>
    </message>
    <message>
        <source>The offload couldn&apos;t start. See the message below.</source>
        <translation>Die Sicherung konnte nicht beginnen. Lesen Sie die Meldung unten.</translation>
    </message>
</context>
<context>
    <name>SuggestedDrive</name>
    <message>
        <source>Add %1</source>
        <translation>%1 hinzufügen</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
</context>
<context>
    <name>Terminal</name>
    <message>
        <source>drive</source>
        <translation>Laufwerk</translation>
    </message>
    <message>
        <source>card and drive</source>
        <translation>Karte und Laufwerk</translation>
    </message>
    <message>
        <source>card</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>No card and no drive is mounted. zephrimark disks lists what is connected.</source>
        <translation>Weder Karte noch Laufwerk ist eingehängt. „zephrimark disks“ listet auf, was angeschlossen ist.</translation>
    </message>
    <message>
        <source>NAME</source>
        <translation>NAME</translation>
    </message>
    <message>
        <source>FREE</source>
        <translation>FREI</translation>
    </message>
    <message>
        <source>SIZE</source>
        <translation>GRÖSSE</translation>
    </message>
    <message>
        <source>KIND</source>
        <translation>ART</translation>
    </message>
    <message>
        <source>PLACE</source>
        <translation>ORT</translation>
    </message>
    <message>
        <source>disk image</source>
        <translation>Datenträgerabbild</translation>
    </message>
    <message>
        <source>virtual</source>
        <translation>virtuell</translation>
    </message>
    <message>
        <source>internal</source>
        <translation>intern</translation>
    </message>
    <message>
        <source>No disks were found.</source>
        <translation>Es wurden keine Datenträger gefunden.</translation>
    </message>
    <message>
        <source>No memory card or external drive is connected. --all shows every disk.</source>
        <translation>Weder Speicherkarte noch externes Laufwerk ist angeschlossen. --all zeigt alle Datenträger.</translation>
    </message>
    <message>
        <source>VOLUMES</source>
        <translation>VOLUMES</translation>
    </message>
    <message>
        <source>DEVICE</source>
        <translation>GERÄT</translation>
    </message>
    <message>
        <source>Usage: zephrimark offload [OPTIONS] SOURCE DESTINATION [DESTINATION [DESTINATION]]</source>
        <translation>Aufruf: zephrimark offload [OPTIONEN] QUELLE ZIEL [ZIEL [ZIEL]]</translation>
    </message>
    <message>
        <source>There is no checksum &quot;%1&quot;; choose xxh64, md5 or sha256.</source>
        <translation>Es gibt keine Prüfsumme „%1“; wählen Sie xxh64, md5 oder sha256.</translation>
    </message>
    <message>
        <source>FOLDER</source>
        <translation>ORDNER</translation>
    </message>
    <message>
        <source>TEXT</source>
        <translation>TEXT</translation>
    </message>
    <message>
        <source>SOURCE</source>
        <translation>QUELLE</translation>
    </message>
    <message>
        <source>The card, or any folder; it is only read</source>
        <translation>Die Karte oder ein beliebiger Ordner; wird nur gelesen</translation>
    </message>
    <message>
        <source>DESTINATION</source>
        <translation>ZIEL</translation>
    </message>
    <message>
        <source>One to three folders, best on drives of their own</source>
        <translation>Ein bis drei Ordner, am besten auf verschiedenen Laufwerken</translation>
    </message>
    <message>
        <source>Folder made in each destination; may hold {date} {time} {card} {camera} {project} and / for folders in folders</source>
        <translation>Ordner, der in jedem Ziel angelegt wird; kann {date} {time} {card} {camera} {project} enthalten und / für Ordner in Ordnern</translation>
    </message>
    <message>
        <source>Project name for {project}</source>
        <translation>Projektname für {project}</translation>
    </message>
    <message>
        <source>xxh64 (default), md5 or sha256; hash lists with sha256 are outside the ASC MHL schema, so choose another for exchange</source>
        <translation>xxh64 (Standard), md5 oder sha256; Hash-Listen mit sha256 liegen außerhalb des ASC-MHL-Schemas, wählen Sie zum Austausch also etwas anderes</translation>
    </message>
    <message>
        <source>Read the card only once; without this it is read a second time and compared</source>
        <translation>Karte nur einmal lesen; sonst wird sie ein zweites Mal gelesen und verglichen</translation>
    </message>
    <message>
        <source>Also save an image of the whole card, deleted files included, on the destination with the most free space</source>
        <translation>Auch ein Abbild der ganzen Karte speichern, mit gelöschten Dateien, auf dem Ziel mit dem meisten freien Platz</translation>
    </message>
    <message>
        <source>Eject the card, but only once everything is verified</source>
        <translation>Karte auswerfen, aber erst, wenn alles geprüft ist</translation>
    </message>
    <message>
        <source>One JSON object per line on standard output; sentences on standard error</source>
        <translation>Ein JSON-Objekt je Zeile auf der Standardausgabe; Sätze auf der Fehlerausgabe</translation>
    </message>
    <message>
        <source>No progress, and no verdict when all is verified</source>
        <translation>Kein Fortschritt, und kein Ergebnis, wenn alles geprüft ist</translation>
    </message>
    <message>
        <source>zephrimark: %1 See zephrimark --help.</source>
        <translation>zephrimark: %1 Siehe zephrimark --help.</translation>
    </message>
    <message>
        <source>Copies camera cards to one, two or three drives and verifies every copy.</source>
        <translation>Kopiert Kamerakarten auf ein, zwei oder drei Laufwerke und prüft jede Kopie.</translation>
    </message>
    <message>
        <source>Display program version information and exit</source>
        <translation>Version des Programms anzeigen und beenden</translation>
    </message>
    <message>
        <source>Copy a card or folder and read every copy back</source>
        <translation>Karte oder Ordner kopieren und jede Kopie zurücklesen</translation>
    </message>
    <message>
        <source>List the mounted cards and drives</source>
        <translation>Eingehängte Karten und Laufwerke auflisten</translation>
    </message>
    <message>
        <source>One JSON object per line</source>
        <translation>Ein JSON-Objekt je Zeile</translation>
    </message>
    <message>
        <source>List the disks that can be cards</source>
        <translation>Datenträger auflisten, die Karten sein können</translation>
    </message>
    <message>
        <source>Internal disks and disk images too</source>
        <translation>Auch interne Datenträger und Datenträgerabbilder</translation>
    </message>
    <message>
        <source>The source is empty. Name a card or folder.</source>
        <translation>Die Quelle ist leer. Nennen Sie eine Karte oder einen Ordner.</translation>
    </message>
    <message>
        <source>There is no card or folder at &quot;%1&quot;: %2.</source>
        <translation>Unter „%1“ gibt es weder Karte noch Ordner: %2.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a file. Name the card or folder that holds it.</source>
        <translation>„%1“ ist eine Datei. Nennen Sie die Karte oder den Ordner, worin sie liegt.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a folder, not a whole card. A card image needs a card as the source.</source>
        <translation>„%1“ ist ein Ordner, keine ganze Karte. Ein Kartenabbild braucht eine Karte als Quelle.</translation>
    </message>
    <message>
        <source>There is no single disk behind &quot;%1&quot; that a card image could be made of.</source>
        <translation>Hinter „%1“ steht kein einzelner Datenträger, von dem ein Kartenabbild gemacht werden könnte.</translation>
    </message>
    <message>
        <source>At most three destinations can be given.</source>
        <translation>Es können höchstens drei Ziele angegeben werden.</translation>
    </message>
    <message>
        <source>A destination is empty. Name a folder.</source>
        <translation>Ein Ziel ist leer. Nennen Sie einen Ordner.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a file. Name a folder to copy to.</source>
        <translation>„%1“ ist eine Datei. Nennen Sie einen Ordner als Ziel.</translation>
    </message>
    <message>
        <source>The destination &quot;%1&quot; is given twice. Two copies on one folder would be one copy.</source>
        <translation>Das Ziel „%1“ ist zweimal angegeben. Zwei Kopien in einem Ordner wären nur eine Kopie.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is a folder, not a whole card. It will not be ejected.</source>
        <translation>„%1“ ist ein Ordner, keine ganze Karte, und wird nicht ausgeworfen.</translation>
    </message>
    <message>
        <source>Ejected %1.</source>
        <translation>%1 ist ausgeworfen.</translation>
    </message>
    <message>
        <source>Stopping after this step. Press Ctrl-C again to end at once.</source>
        <translation>Hält nach diesem Schritt an. Drücken Sie noch einmal Strg+C, um sofort zu beenden.</translation>
    </message>
    <message>
        <source>%1 is required</source>
        <translation>%1 fehlt</translation>
    </message>
    <message>
        <source>The following argument was not expected: %1</source>
        <translation>Dieses Argument wird nicht erwartet: %1</translation>
    </message>
    <message>
        <source>The following arguments were not expected: %1</source>
        <translation>Diese Argumente werden nicht erwartet: %1</translation>
    </message>
    <message>
        <source>%1: %2 required %3 missing</source>
        <translation>%1: Es fehlt %2 × %3</translation>
    </message>
    <message>
        <source>%1: Should be true/false or a number</source>
        <translation>%1: Erwartet wird true, false oder eine Zahl</translation>
    </message>
    <message>
        <source>%1: too many inputs for a flag</source>
        <translation>%1: zu viele Werte für einen Schalter</translation>
    </message>
    <message>
        <source>Usage</source>
        <translation>Aufruf</translation>
    </message>
    <message>
        <source>OPTIONS</source>
        <translation>OPTIONEN</translation>
    </message>
    <message>
        <source>SUBCOMMAND</source>
        <translation>BEFEHL</translation>
    </message>
    <message>
        <source>Positionals</source>
        <translation>Argumente</translation>
    </message>
    <message>
        <source>REQUIRED</source>
        <translation>(erforderlich)</translation>
    </message>
    <message>
        <source>Print this help message and exit</source>
        <translation>Diese Hilfe anzeigen und beenden</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Subcommands</source>
        <translation>Befehle</translation>
    </message>
    <message>
        <source>Reading</source>
        <translation>Lesen</translation>
    </message>
    <message>
        <source>Copying</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Checking</source>
        <translation>Prüfen</translation>
    </message>
    <message>
        <source>Imaging</source>
        <translation>Abbild</translation>
    </message>
    <message>
        <source>Finishing</source>
        <translation>Abschluss</translation>
    </message>
    <message numerus="yes">
        <source>%1 of %2 files</source>
        <comment>%1 of %2 file</comment>
        <translation>
            <numerusform>%1 von %2 Datei</numerusform>
            <numerusform>%1 von %2 Dateien</numerusform>
        </translation>
    </message>
    <message>
        <source>%1: %2 %, %3, %4</source>
        <translation>%1: %2&#xa0;%, %3, %4</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Took</source>
        <translation>Dauer</translation>
    </message>
    <message>
        <source>Checksum</source>
        <translation>Prüfsumme</translation>
    </message>
    <message>
        <source>%1 · %2 already there</source>
        <translation>%1 · %2 schon vorhanden</translation>
    </message>
    <message>
        <source>Card image</source>
        <translation>Kartenabbild</translation>
    </message>
    <message>
        <source>Not verified everywhere</source>
        <translation>Nicht überall geprüft</translation>
    </message>
    <message>
        <source>Could not be read from the card</source>
        <translation>Konnte nicht von der Karte gelesen werden</translation>
    </message>
    <message>
        <source>Reports</source>
        <translation>Berichte</translation>
    </message>
    <message>
        <source>Hash lists</source>
        <translation>Hash-Listen</translation>
    </message>
    <message>
        <source>Exit status: 0 every file is verified on every drive; 1 finished, but not everything is
verified, something on the card could not be read, or a report, a hash list or the result
could not be written; 2 wrong arguments; 3 could not start or was stopped by an error;
130 stopped by Ctrl-C. Starting again picks up where it ended.</source>
        <translation>Exit-Status: 0 jede Datei ist auf jedem Laufwerk geprüft; 1 beendet, aber nicht alles ist
geprüft, etwas auf der Karte war nicht lesbar, oder ein Bericht, eine Hash-Liste oder das
Ergebnis konnte nicht geschrieben werden; 2 falsche Argumente; 3 konnte nicht beginnen oder
wurde durch einen Fehler beendet; 130 mit Strg+C angehalten. Ein neuer Start fährt dort
fort, wo der letzte endete.</translation>
    </message>
    <message>
        <source>zephrimark: The result could not be written to standard output: %1.</source>
        <translation>zephrimark: Das Ergebnis konnte nicht auf die Standardausgabe geschrieben werden: %1.</translation>
    </message>
    <message>
        <source>Not every drive has its report and its hash list</source>
        <translation>Nicht jedes Laufwerk hat seinen Bericht und seine Hash-Liste</translation>
    </message>
</context>
<context>
    <name>Updates</name>
    <message>
        <source>The update information isn&apos;t signed by Zephrimark, so it was not used.</source>
        <translation>Die Update-Information ist nicht von Zephrimark signiert und wurde deshalb nicht verwendet.</translation>
    </message>
    <message>
        <source>The update information couldn&apos;t be understood.</source>
        <translation>Die Update-Information ist nicht verständlich.</translation>
    </message>
    <message>
        <source>The update information names a download page that isn&apos;t secure, so it was not used.</source>
        <translation>Die Update-Information nennt eine Download-Seite, die nicht sicher ist, und wurde deshalb nicht verwendet.</translation>
    </message>
    <message>
        <source>The answer took too long.</source>
        <translation>Die Antwort hat zu lange gedauert.</translation>
    </message>
    <message>
        <source>You have the newest version</source>
        <translation>Sie haben die neueste Version</translation>
    </message>
    <message>
        <source>Zephrimark Offload %1 is the newest version.</source>
        <translation>Zephrimark Offload %1 ist die neueste Version.</translation>
    </message>
    <message>
        <source>Zephrimark Offload %1 is available</source>
        <translation>Zephrimark Offload %1 ist verfügbar</translation>
    </message>
    <message>
        <source>You have %1. The download page opens in your browser; nothing is installed by itself.</source>
        <translation>Sie haben Version %1. Die Download-Seite öffnet sich im Browser; nichts wird von selbst installiert.</translation>
    </message>
    <message>
        <source>The update check didn&apos;t work</source>
        <translation>Die Suche nach Updates hat nicht funktioniert</translation>
    </message>
    <message>
        <source>The update server couldn&apos;t be reached: %1</source>
        <translation>Der Update-Server war nicht erreichbar: %1</translation>
    </message>
    <message>
        <source>The update server couldn&apos;t prove who it is: %1</source>
        <translation>Der Update-Server konnte sich nicht ausweisen: %1</translation>
    </message>
    <message>
        <source>The server redirected to an address that isn&apos;t secure.</source>
        <translation>Der Server leitete auf eine Adresse um, die nicht sicher ist.</translation>
    </message>
    <message>
        <source>The server redirected too many times.</source>
        <translation>Der Server leitete zu oft um.</translation>
    </message>
    <message>
        <source>The update server answered with the error %1.</source>
        <translation>Der Update-Server antwortete mit dem Fehler %1.</translation>
    </message>
    <message>
        <source>The update information is larger than it may be, so it was not used.</source>
        <translation>Die Update-Information ist größer, als sie sein darf, und wurde deshalb nicht verwendet.</translation>
    </message>
</context>
<context>
    <name>ZephrimarkOffload::DonePresenter</name>
    <message>
        <source>Not every drive got its report and its hash list: they could not be written.</source>
        <translation>Nicht jedes Laufwerk hat Bericht und Hash-Liste bekommen: Sie konnten nicht geschrieben werden.</translation>
    </message>
</context>
<context>
    <name>ZephrimarkOffload::RunningPresenter</name>
    <message>
        <source>Offloading %1</source>
        <translation>%1 wird gesichert</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1&#xa0;%</translation>
    </message>
</context>
<context>
    <name>ZephrimarkOffload::SetupPresenter</name>
    <message>
        <source>Insert a card, or choose a folder to offload.</source>
        <translation>Legen Sie eine Karte ein, oder wählen Sie einen Ordner zum Sichern.</translation>
    </message>
    <message>
        <source>Connect the drives you want to copy to.</source>
        <translation>Schließen Sie die Laufwerke an, auf die Sie kopieren möchten.</translation>
    </message>
    <message>
        <source>Custom…</source>
        <translation>Eigene …</translation>
    </message>
</context>
<context>
    <name>ZephrimarkOffload::Shell</name>
    <message>
        <source>Card</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>Drives</source>
        <translation>Laufwerke</translation>
    </message>
    <message>
        <source>Copy and verify</source>
        <translation>Kopieren und prüfen</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
</context>
</TS>

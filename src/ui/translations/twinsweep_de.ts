<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name>CoreText</name>
    <message>
        <source>You did not select any duplicate files. Please select at least one duplicate file and try again.</source>
        <translation>Sie haben keine doppelten Dateien ausgewählt. Bitte wählen Sie mindestens eine doppelte Datei aus und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Some files have been selected to be removed completely. Are you sure you want to continue?</source>
        <translation>Von einigen Dateien sind alle Kopien zum Entfernen ausgewählt; sie würden vollständig entfernt. Möchten Sie wirklich fortfahren?</translation>
    </message>
    <message>
        <source>You are about to permanently remove the selected duplicate files. Continue?</source>
        <translation>Sie sind dabei, die ausgewählten doppelten Dateien endgültig zu löschen. Fortfahren?</translation>
    </message>
    <message>
        <source>Some groups have every copy selected; with hard links, those groups are left as they are. Continue?</source>
        <translation>In einigen Gruppen sind alle Kopien ausgewählt; beim Ersetzen durch harte Links bleiben diese Gruppen unverändert. Fortfahren?</translation>
    </message>
    <message>
        <source>Some groups have every copy selected; when sharing storage, those groups are left as they are. Continue?</source>
        <translation>In einigen Gruppen sind alle Kopien ausgewählt; beim Teilen des Speicherplatzes bleiben diese Gruppen unverändert. Fortfahren?</translation>
    </message>
    <message>
        <source>No selected copy could share its storage with a kept copy; every file was left as it was.</source>
        <translation>Keine ausgewählte Kopie konnte ihren Speicherplatz mit einer behaltenen Kopie teilen; alle Dateien blieben unverändert.</translation>
    </message>
    <message>
        <source>None of the folders searched is on a file system that can share storage (Btrfs, or XFS made with reflinks). Nothing was changed.</source>
        <translation>Keiner der durchsuchten Ordner liegt auf einem Dateisystem, das Speicherplatz teilen kann (Btrfs oder mit Reflinks angelegtes XFS). Es wurde nichts geändert.</translation>
    </message>
    <message>
        <source>Duplicate files cleaned successfully. </source>
        <translation>Doppelte Dateien erfolgreich bereinigt. </translation>
    </message>
    <message>
        <source>No selected copy could be replaced by a hard link; every file was left as it was.</source>
        <translation>Keine ausgewählte Kopie konnte durch einen harten Link ersetzt werden; alle Dateien blieben unverändert.</translation>
    </message>
    <message>
        <source>Do you want to keep at least one copy of each duplicate file?</source>
        <translation>Möchten Sie von jeder doppelten Datei mindestens eine Kopie behalten?</translation>
    </message>
    <message>
        <source>Yes, keep the oldest file</source>
        <translation>Ja, die älteste Datei behalten</translation>
    </message>
    <message>
        <source>Yes, keep the newest file</source>
        <translation>Ja, die neueste Datei behalten</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
</context>
<context>
    <name>WindowCommands</name>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Minimise</source>
        <translation>&amp;Minimieren</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Removing Duplicate Files</source>
        <translation>&amp;Doppelte Dateien entfernen</translation>
    </message>
    <message>
        <source>&amp;Custom Selection of Duplicates</source>
        <translation>&amp;Benutzerdefinierte Auswahl von Duplikaten</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::AppDelegate</name>
    <message>
        <source>Finished what a stopped clean left behind:</source>
        <translation>Was eine abgebrochene Bereinigung hinterlassen hatte, wurde abgeschlossen:</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::FolderDialog</name>
    <message>
        <source>Select Folder(s)</source>
        <translation>Ordner wählen</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::FolderModel</name>
    <message>
        <source>Copies in a protected folder are never marked or removed.</source>
        <translation>Kopien in einem geschützten Ordner werden nie markiert oder entfernt.</translation>
    </message>
    <message>
        <source>Protected</source>
        <translation>Geschützt</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::PlaceholderWindow</name>
    <message>
        <source>%1 groups of duplicate files were found.
This window is not ready yet.</source>
        <translation>%1 Gruppen doppelter Dateien wurden gefunden.
Dieses Fenster ist noch nicht fertig.</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::Stepper</name>
    <message>
        <source>Increase size</source>
        <translation>Größe erhöhen</translation>
    </message>
    <message>
        <source>Adds one to the size.</source>
        <translation>Erhöht die Größe um eins.</translation>
    </message>
    <message>
        <source>Decrease size</source>
        <translation>Größe verringern</translation>
    </message>
    <message>
        <source>Takes one from the size.</source>
        <translation>Verringert die Größe um eins.</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::StringListModel</name>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Extension</source>
        <translation>Endung</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::ViewController</name>
    <message>
        <source>Remembered fingerprints were cleared: the next search reads every file.</source>
        <translation>Die gespeicherten Fingerabdrücke wurden gelöscht: Die nächste Suche liest jede Datei.</translation>
    </message>
    <message>
        <source>%1. Nothing was restored.</source>
        <translation>%1. Es wurde nichts wiederhergestellt.</translation>
    </message>
    <message>
        <source>1 file was put back where it was.</source>
        <translation>1 Datei wurde an ihren Platz zurückgelegt.</translation>
    </message>
    <message>
        <source>%1 files were put back where they were.</source>
        <translation>%1 Dateien wurden an ihren Platz zurückgelegt.</translation>
    </message>
    <message>
        <source> These could not be:
</source>
        <translation> Diese konnten nicht zurückgelegt werden:
</translation>
    </message>
    <message>
        <source>
… and %1 more.</source>
        <translation>
… und %1 weitere.</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::ViewControllerCustomKeep</name>
    <message>
        <source>First date rule</source>
        <translation>Erste Datumsregel</translation>
    </message>
    <message>
        <source>Marks the copies whose date is earlier or later than the date given.</source>
        <translation>Markiert die Kopien, deren Datum vor oder nach dem angegebenen Tag liegt.</translation>
    </message>
    <message>
        <source>Date of the first date rule</source>
        <translation>Datumsart der ersten Datumsregel</translation>
    </message>
    <message>
        <source>Which date of a file the first date rule compares.</source>
        <translation>Welches Datum einer Datei die erste Datumsregel vergleicht.</translation>
    </message>
    <message>
        <source>Comparison of the first date rule</source>
        <translation>Vergleich der ersten Datumsregel</translation>
    </message>
    <message>
        <source>Whether the first date rule marks earlier or later files.</source>
        <translation>Ob die erste Datumsregel frühere oder spätere Dateien markiert.</translation>
    </message>
    <message>
        <source>Day of the first date rule</source>
        <translation>Tag der ersten Datumsregel</translation>
    </message>
    <message>
        <source>The day the first date rule compares with.</source>
        <translation>Der Tag, mit dem die erste Datumsregel vergleicht.</translation>
    </message>
    <message>
        <source>Second date rule</source>
        <translation>Zweite Datumsregel</translation>
    </message>
    <message>
        <source>Date of the second date rule</source>
        <translation>Datumsart der zweiten Datumsregel</translation>
    </message>
    <message>
        <source>Which date of a file the second date rule compares.</source>
        <translation>Welches Datum einer Datei die zweite Datumsregel vergleicht.</translation>
    </message>
    <message>
        <source>Comparison of the second date rule</source>
        <translation>Vergleich der zweiten Datumsregel</translation>
    </message>
    <message>
        <source>Whether the second date rule marks earlier or later files.</source>
        <translation>Ob die zweite Datumsregel frühere oder spätere Dateien markiert.</translation>
    </message>
    <message>
        <source>Day of the second date rule</source>
        <translation>Tag der zweiten Datumsregel</translation>
    </message>
    <message>
        <source>The day the second date rule compares with.</source>
        <translation>Der Tag, mit dem die zweite Datumsregel vergleicht.</translation>
    </message>
    <message>
        <source>First size rule</source>
        <translation>Erste Größenregel</translation>
    </message>
    <message>
        <source>Marks the copies that are larger or smaller than the size given.</source>
        <translation>Markiert die Kopien, die größer oder kleiner als die angegebene Größe sind.</translation>
    </message>
    <message>
        <source>Comparison of the first size rule</source>
        <translation>Vergleich der ersten Größenregel</translation>
    </message>
    <message>
        <source>Whether the first size rule marks larger or smaller files.</source>
        <translation>Ob die erste Größenregel größere oder kleinere Dateien markiert.</translation>
    </message>
    <message>
        <source>Size of the first size rule</source>
        <translation>Größe der ersten Größenregel</translation>
    </message>
    <message>
        <source>A number from 0 to 100000, in the unit chosen next to it.</source>
        <translation>Eine Zahl von 0 bis 100000, in der daneben gewählten Einheit.</translation>
    </message>
    <message>
        <source>Unit of the first size rule</source>
        <translation>Einheit der ersten Größenregel</translation>
    </message>
    <message>
        <source>The unit of the size typed: bytes, kilobytes, megabytes or gigabytes.</source>
        <translation>Die Einheit der eingegebenen Größe: Byte, Kilobyte, Megabyte oder Gigabyte.</translation>
    </message>
    <message>
        <source>Second size rule</source>
        <translation>Zweite Größenregel</translation>
    </message>
    <message>
        <source>Comparison of the second size rule</source>
        <translation>Vergleich der zweiten Größenregel</translation>
    </message>
    <message>
        <source>Whether the second size rule marks larger or smaller files.</source>
        <translation>Ob die zweite Größenregel größere oder kleinere Dateien markiert.</translation>
    </message>
    <message>
        <source>Size of the second size rule</source>
        <translation>Größe der zweiten Größenregel</translation>
    </message>
    <message>
        <source>Unit of the second size rule</source>
        <translation>Einheit der zweiten Größenregel</translation>
    </message>
    <message>
        <source>File type rule</source>
        <translation>Dateitypregel</translation>
    </message>
    <message>
        <source>Marks the copies whose extension is in the list.</source>
        <translation>Markiert die Kopien, deren Endung in der Liste steht.</translation>
    </message>
    <message>
        <source>File extensions</source>
        <translation>Dateiendungen</translation>
    </message>
    <message>
        <source>The extensions the file type rule looks for.</source>
        <translation>Die Endungen, nach denen die Dateitypregel sucht.</translation>
    </message>
    <message>
        <source>New extension</source>
        <translation>Neue Endung</translation>
    </message>
    <message>
        <source>An extension to add to the list, without the dot.</source>
        <translation>Eine Endung für die Liste, ohne Punkt.</translation>
    </message>
    <message>
        <source>Add extension</source>
        <translation>Endung hinzufügen</translation>
    </message>
    <message>
        <source>Adds the extension typed to the list.</source>
        <translation>Fügt die eingegebene Endung der Liste hinzu.</translation>
    </message>
    <message>
        <source>Remove extension</source>
        <translation>Endung entfernen</translation>
    </message>
    <message>
        <source>Removes the selected extension from the list.</source>
        <translation>Entfernt die ausgewählte Endung aus der Liste.</translation>
    </message>
    <message>
        <source>Remove all extensions</source>
        <translation>Alle Endungen entfernen</translation>
    </message>
    <message>
        <source>Empties the list of extensions.</source>
        <translation>Leert die Liste der Endungen.</translation>
    </message>
    <message>
        <source>Folder rule</source>
        <translation>Ordnerregel</translation>
    </message>
    <message>
        <source>Marks the copies that are in the folder given.</source>
        <translation>Markiert die Kopien im angegebenen Ordner.</translation>
    </message>
    <message>
        <source>Folder of the folder rule</source>
        <translation>Ordner der Ordnerregel</translation>
    </message>
    <message>
        <source>The full path of the folder.</source>
        <translation>Der vollständige Pfad des Ordners.</translation>
    </message>
    <message>
        <source>Browse for the folder</source>
        <translation>Ordner suchen</translation>
    </message>
    <message>
        <source>Opens a window to pick the folder.</source>
        <translation>Öffnet ein Fenster zur Auswahl des Ordners.</translation>
    </message>
    <message>
        <source>Include subfolders</source>
        <translation>Unterordner einbeziehen</translation>
    </message>
    <message>
        <source>Whether copies in the folder&apos;s subfolders count as in the folder.</source>
        <translation>Ob Kopien in Unterordnern des Ordners als im Ordner gelten.</translation>
    </message>
    <message>
        <source>Match or don&apos;t match</source>
        <translation>Erfüllen oder nicht erfüllen</translation>
    </message>
    <message>
        <source>Marks the copies that match every rule that is on, or the ones that don&apos;t.</source>
        <translation>Markiert die Kopien, die jede eingeschaltete Regel erfüllen, oder die, die es nicht tun.</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Puts back the rules a new group starts with.</source>
        <translation>Stellt die Regeln wieder her, mit denen eine neue Gruppe beginnt.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Closes the window and keeps the rules as they were.</source>
        <translation>Schließt das Fenster und lässt die Regeln, wie sie waren.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Saves the rules and marks the copies by them.</source>
        <translation>Speichert die Regeln und markiert die Kopien danach.</translation>
    </message>
    <message>
        <source>Custom Selection</source>
        <translation>Benutzerdefinierte Auswahl</translation>
    </message>
    <message>
        <source>Mark for removal the copies that:</source>
        <translation>Zum Entfernen die Kopien markieren, auf die zutrifft:</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>than</source>
        <translation>als</translation>
    </message>
    <message>
        <source>File size</source>
        <translation>Dateigröße</translation>
    </message>
    <message>
        <source>File type is one of</source>
        <translation>Dateityp ist einer von</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove All</source>
        <translation>Alle entfernen</translation>
    </message>
    <message>
        <source>In folder</source>
        <translation>Im Ordner</translation>
    </message>
    <message>
        <source>&amp;Browse…</source>
        <translation>&amp;Durchsuchen…</translation>
    </message>
    <message>
        <source>Mark the copies that</source>
        <translation>Die Kopien markieren, die jede eingeschaltete Regel</translation>
    </message>
    <message>
        <source>every rule that is on.</source>
        <translation>.</translation>
    </message>
    <message>
        <source>&amp;Reset</source>
        <translation>&amp;Zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>Remove E&amp;xtension</source>
        <translation>Endung &amp;entfernen</translation>
    </message>
    <message>
        <source>Remove All Ex&amp;tensions</source>
        <translation>&amp;Alle Endungen entfernen</translation>
    </message>
    <message>
        <source>Creation Date</source>
        <translation>Erstellungsdatum</translation>
    </message>
    <message>
        <source>Modification Date</source>
        <translation>Änderungsdatum</translation>
    </message>
    <message>
        <source>Earlier</source>
        <translation>Früher</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Später</translation>
    </message>
    <message>
        <source>Larger</source>
        <translation>Größer</translation>
    </message>
    <message>
        <source>Smaller</source>
        <translation>Kleiner</translation>
    </message>
    <message>
        <source>B</source>
        <translation>B</translation>
    </message>
    <message>
        <source>KB</source>
        <translation>KB</translation>
    </message>
    <message>
        <source>MB</source>
        <translation>MB</translation>
    </message>
    <message>
        <source>GB</source>
        <translation>GB</translation>
    </message>
    <message>
        <source>Match</source>
        <translation>erfüllen</translation>
    </message>
    <message>
        <source>Don&apos;t match</source>
        <translation>nicht erfüllen</translation>
    </message>
    <message>
        <source>Select File Path</source>
        <translation>Ordner wählen</translation>
    </message>
    <message>
        <source>The custom file path you entered is not valid. Please enter a valid path.</source>
        <translation>Der eingegebene Ordnerpfad ist ungültig. Bitte geben Sie einen gültigen Pfad ein.</translation>
    </message>
</context>
</TS>

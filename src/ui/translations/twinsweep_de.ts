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
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy now shares storage with a kept copy before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie teilt vor dem Anhalten ihren Speicherplatz mit einer behaltenen Kopie; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy now share storage with a kept copy before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie teilen vor dem Anhalten ihren Speicherplatz mit einer behaltenen Kopie; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy was replaced by a hard link before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie wurde vor dem Anhalten durch einen harten Link ersetzt; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy were replaced by hard links before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie wurden vor dem Anhalten durch harte Links ersetzt; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy was moved to the Trash before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie wurde vor dem Anhalten in den Papierkorb verschoben; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy were moved to the Trash before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie wurden vor dem Anhalten in den Papierkorb verschoben; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy was deleted before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie wurde vor dem Anhalten gelöscht; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copy were deleted before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopie wurden vor dem Anhalten gelöscht; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies now shares storage with a kept copy before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien teilt vor dem Anhalten ihren Speicherplatz mit einer behaltenen Kopie; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies now share storage with a kept copy before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien teilen vor dem Anhalten ihren Speicherplatz mit einer behaltenen Kopie; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies was replaced by a hard link before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien wurde vor dem Anhalten durch einen harten Link ersetzt; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies were replaced by hard links before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien wurden vor dem Anhalten durch harte Links ersetzt; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies was moved to the Trash before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien wurde vor dem Anhalten in den Papierkorb verschoben; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies were moved to the Trash before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien wurden vor dem Anhalten in den Papierkorb verschoben; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies was deleted before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien wurde vor dem Anhalten gelöscht; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>Cleaning was stopped: %1 of the %2 marked copies were deleted before the stop; the others were left as they are.</source>
        <translation>Die Bereinigung wurde angehalten: %1 von %2 markierten Kopien wurden vor dem Anhalten gelöscht; die übrigen blieben unverändert.</translation>
    </message>
    <message>
        <source>%1 marked copy was left in place, still listed and marked:</source>
        <translation>%1 markierte Kopie blieb an ihrem Platz und ist weiter aufgeführt und markiert:</translation>
    </message>
    <message>
        <source>%1 marked copies were left in place, still listed and marked:</source>
        <translation>%1 markierte Kopien blieben an ihrem Platz und sind weiter aufgeführt und markiert:</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
    <message>
        <source>%1 × other reasons</source>
        <translation>%1 × andere Gründe</translation>
    </message>
    <message>
        <source>not removed</source>
        <translation>nicht entfernt</translation>
    </message>
    <message>
        <source>in a protected folder, not removed</source>
        <translation>in einem geschützten Ordner, nicht entfernt</translation>
    </message>
    <message>
        <source>changed since the search, not removed</source>
        <translation>seit der Suche geändert, nicht entfernt</translation>
    </message>
    <message>
        <source>replaced by another file since the search, not removed</source>
        <translation>seit der Suche durch eine andere Datei ersetzt, nicht entfernt</translation>
    </message>
    <message>
        <source>changed during the clean, not removed</source>
        <translation>während der Bereinigung geändert, nicht entfernt</translation>
    </message>
    <message>
        <source>kept copy belongs to another user, not removed</source>
        <translation>die behaltene Kopie gehört einem anderen Benutzer, nicht entfernt</translation>
    </message>
    <message>
        <source>not seen by the search, not removed</source>
        <translation>von der Suche nicht gesehen, nicht entfernt</translation>
    </message>
    <message>
        <source>its folder was not walked by the search, not removed</source>
        <translation>ihr Ordner wurde von der Suche nicht durchlaufen, nicht entfernt</translation>
    </message>
    <message>
        <source>its folder was replaced since the search, not removed</source>
        <translation>ihr Ordner wurde seit der Suche ersetzt, nicht entfernt</translation>
    </message>
    <message>
        <source>Show Them</source>
        <translation>Anzeigen</translation>
    </message>
</context>
<context>
    <name>OutsideLocations</name>
    <message>
        <source> and </source>
        <translation> und </translation>
    </message>
    <message>
        <source>The search looks only under %1. Outside those locations: %2.</source>
        <translation>Gesucht wird nur unter %1. Außerhalb dieser Orte liegen: %2.</translation>
    </message>
</context>
<context>
    <name>ProgressText</name>
    <message>
        <source>0/0 Files Scanned</source>
        <translation>0/0 Dateien durchsucht</translation>
    </message>
    <message>
        <source>%1/%2 Files Scaned</source>
        <translation>%1/%2 Dateien durchsucht</translation>
    </message>
    <message>
        <source>%1 of %2 compared</source>
        <translation>%1 von %2 verglichen</translation>
    </message>
    <message>
        <source>%1 of %2 compared, about %3 s left</source>
        <translation>%1 von %2 verglichen, noch etwa %3 s</translation>
    </message>
    <message>
        <source>%1 of %2 compared, about %3 min left</source>
        <translation>%1 von %2 verglichen, noch etwa %3 min</translation>
    </message>
    <message>
        <source>%1 of %2 compared, about %3 h left</source>
        <translation>%1 von %2 verglichen, noch etwa %3 h</translation>
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
    <name>twinsweep::ui::CleanProgress</name>
    <message>
        <source>Cleaning</source>
        <translation>Bereinigung</translation>
    </message>
    <message>
        <source>Checking and cleaning the marked copies...</source>
        <translation>Die markierten Kopien werden geprüft und bereinigt...</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Clean progress</source>
        <translation>Fortschritt der Bereinigung</translation>
    </message>
    <message>
        <source>Share of the marked copies done</source>
        <translation>Anteil der erledigten markierten Kopien</translation>
    </message>
    <message>
        <source>Copies done</source>
        <translation>Erledigte Kopien</translation>
    </message>
    <message>
        <source>Marked copies done so far</source>
        <translation>Bisher erledigte markierte Kopien</translation>
    </message>
    <message>
        <source>Space freed</source>
        <translation>Freigegebener Speicherplatz</translation>
    </message>
    <message>
        <source>Space freed so far</source>
        <translation>Bisher freigegebener Speicherplatz</translation>
    </message>
    <message>
        <source>Copy being checked</source>
        <translation>Geprüfte Kopie</translation>
    </message>
    <message>
        <source>The path of the copy checked now</source>
        <translation>Der Pfad der gerade geprüften Kopie</translation>
    </message>
    <message>
        <source>Stops the clean after the copy under way</source>
        <translation>Hält die Bereinigung nach der laufenden Kopie an</translation>
    </message>
    <message>
        <source>%1 of %2 copies done</source>
        <translation>%1 von %2 Kopien erledigt</translation>
    </message>
    <message>
        <source>Freed: %1</source>
        <translation>Freigegeben: %1</translation>
    </message>
    <message>
        <source>Stopping...</source>
        <translation>Wird angehalten...</translation>
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
    <name>twinsweep::ui::GroupsModel</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Marked</source>
        <translation>Markiert</translation>
    </message>
    <message>
        <source>Matched by size only; contents not compared</source>
        <translation>Nur nach Größe zugeordnet; Inhalte nicht verglichen</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::MembersModel</name>
    <message>
        <source>In a protected folder: never marked or removed.</source>
        <translation>In einem geschützten Ordner: wird nie markiert oder entfernt.</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>When each copy was created (its modification date where the file system keeps no creation date)</source>
        <translation>Wann jede Kopie erstellt wurde (ihr Änderungsdatum, wo das Dateisystem kein Erstellungsdatum führt)</translation>
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
    <message>
        <source>Folders to scan</source>
        <translation>Zu durchsuchende Ordner</translation>
    </message>
    <message>
        <source>Add folders with the buttons, or drag them here from your file manager.</source>
        <translation>Fügen Sie Ordner mit den Knöpfen hinzu oder ziehen Sie sie aus Ihrer Dateiverwaltung hierher.</translation>
    </message>
    <message>
        <source>Add Folder...</source>
        <translation>Ordner hinzufügen...</translation>
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
        <source>File size</source>
        <translation>Dateigröße</translation>
    </message>
    <message>
        <source>Smallest:</source>
        <translation>Kleinste:</translation>
    </message>
    <message>
        <source>Largest:</source>
        <translation>Größte:</translation>
    </message>
    <message>
        <source>File types</source>
        <translation>Dateitypen</translation>
    </message>
    <message>
        <source>All file types</source>
        <translation>Alle Dateitypen</translation>
    </message>
    <message>
        <source>Only these extensions:</source>
        <translation>Nur diese Endungen:</translation>
    </message>
    <message>
        <source>extension, e.g. jpg</source>
        <translation>Endung, z. B. jpg</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Move duplicate files to the Trash</source>
        <translation>Doppelte Dateien in den Papierkorb verschieben</translation>
    </message>
    <message>
        <source>Delete duplicate files permanently</source>
        <translation>Doppelte Dateien endgültig löschen</translation>
    </message>
    <message>
        <source>Replace duplicate files with hard links</source>
        <translation>Doppelte Dateien durch harte Links ersetzen</translation>
    </message>
    <message>
        <source>Each removed copy becomes a hard link to a kept copy: every path keeps working and the contents are stored once.</source>
        <translation>Jede entfernte Kopie wird zu einem harten Link auf eine behaltene Kopie: Jeder Pfad funktioniert weiter, und der Inhalt wird nur einmal gespeichert.</translation>
    </message>
    <message>
        <source>Share the storage of duplicate files (copy-on-write)</source>
        <translation>Speicherplatz doppelter Dateien teilen (Copy-on-Write)</translation>
    </message>
    <message>
        <source>On Btrfs and XFS, each copy shares its storage with a kept copy: nothing is removed, and every file keeps its own path, owner and later edits.</source>
        <translation>Auf Btrfs und XFS teilt jede Kopie ihren Speicherplatz mit einer behaltenen Kopie: Nichts wird entfernt, und jede Datei behält ihren eigenen Pfad, ihren Eigentümer und spätere Änderungen.</translation>
    </message>
    <message>
        <source>Skip packages (application bundles and similar folders)</source>
        <translation>Pakete überspringen (Anwendungsbündel und ähnliche Ordner)</translation>
    </message>
    <message>
        <source>Compare large files by content</source>
        <translation>Große Dateien nach Inhalt vergleichen</translation>
    </message>
    <message>
        <source>Files of 100 MB and more are otherwise matched by size alone.</source>
        <translation>Dateien ab 100 MB werden sonst allein nach ihrer Größe zugeordnet.</translation>
    </message>
    <message>
        <source>Remember file fingerprints between searches</source>
        <translation>Fingerabdrücke von Dateien zwischen Suchen speichern</translation>
    </message>
    <message>
        <source>Files unchanged since an earlier search are not read again.</source>
        <translation>Dateien, die seit einer früheren Suche unverändert sind, werden nicht erneut gelesen.</translation>
    </message>
    <message>
        <source>Search at idle disk priority</source>
        <translation>Mit niedriger Datenträgerpriorität suchen</translation>
    </message>
    <message>
        <source>The search reads only when no other program is waiting for the disk: slower, but the desktop stays responsive.</source>
        <translation>Die Suche liest nur, wenn kein anderes Programm auf den Datenträger wartet: langsamer, aber die Arbeitsumgebung bleibt reaktionsschnell.</translation>
    </message>
    <message>
        <source>Find Duplicate Files</source>
        <translation>Doppelte Dateien finden</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;New</source>
        <translation>&amp;Neu</translation>
    </message>
    <message>
        <source>&amp;Add Folder...</source>
        <translation>Ordner &amp;hinzufügen...</translation>
    </message>
    <message>
        <source>&amp;Find Duplicate Files</source>
        <translation>Doppelte Dateien &amp;finden</translation>
    </message>
    <message>
        <source>Clear Remembered &amp;Fingerprints</source>
        <translation>&amp;Gespeicherte Fingerabdrücke löschen</translation>
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
        <source>&amp;Undo Clean</source>
        <translation>Bereinigung &amp;rückgängig machen</translation>
    </message>
    <message>
        <source>&amp;Remove Folder</source>
        <translation>Ordner &amp;entfernen</translation>
    </message>
    <message>
        <source>Remove All F&amp;olders...</source>
        <translation>&amp;Alle Ordner entfernen...</translation>
    </message>
    <message>
        <source>Remove E&amp;xtension</source>
        <translation>E&amp;ndung entfernen</translation>
    </message>
    <message>
        <source>Remove All Ex&amp;tensions</source>
        <translation>Alle Endungen en&amp;tfernen</translation>
    </message>
    <message>
        <source>The selected folder(s) could not be added.</source>
        <translation>Die ausgewählten Ordner konnten nicht hinzugefügt werden.</translation>
    </message>
    <message>
        <source>Are you sure you want to remove all folders from the list?</source>
        <translation>Möchten Sie wirklich alle Ordner aus der Liste entfernen?</translation>
    </message>
    <message>
        <source>There are no folders to scan. Please add at least one folder and try again.</source>
        <translation>Es gibt keine zu durchsuchenden Ordner. Bitte fügen Sie mindestens einen Ordner hinzu und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>You have unsaved changes that will be lost. Are you sure you want to exit the application?</source>
        <translation>Sie haben ungespeicherte Änderungen, die verloren gehen. Möchten Sie die Anwendung wirklich beenden?</translation>
    </message>
    <message>
        <source>The folders the search looks in. Tick Protected beside a folder so no copy in it is marked or removed.</source>
        <translation>Die Ordner, in denen gesucht wird. Setzen Sie „Geschützt“ neben einem Ordner, damit keine Kopie darin markiert oder entfernt wird.</translation>
    </message>
    <message>
        <source>Add folder</source>
        <translation>Ordner hinzufügen</translation>
    </message>
    <message>
        <source>Opens a window to pick folders to scan.</source>
        <translation>Öffnet ein Fenster, in dem Sie zu durchsuchende Ordner wählen.</translation>
    </message>
    <message>
        <source>Remove folder</source>
        <translation>Ordner entfernen</translation>
    </message>
    <message>
        <source>Removes the selected folder from the list.</source>
        <translation>Entfernt den ausgewählten Ordner aus der Liste.</translation>
    </message>
    <message>
        <source>Remove all folders</source>
        <translation>Alle Ordner entfernen</translation>
    </message>
    <message>
        <source>Empties the list of folders.</source>
        <translation>Leert die Liste der Ordner.</translation>
    </message>
    <message>
        <source>Search any location</source>
        <translation>Überall suchen</translation>
    </message>
    <message>
        <source>Ticks Search any location, so the folders named beside it are searched too.</source>
        <translation>Setzt „Überall suchen“, damit auch die daneben genannten Ordner durchsucht werden.</translation>
    </message>
    <message>
        <source>Smallest file size</source>
        <translation>Kleinste Dateigröße</translation>
    </message>
    <message>
        <source>Files smaller than this are left out of the search.</source>
        <translation>Kleinere Dateien lässt die Suche aus.</translation>
    </message>
    <message>
        <source>Largest file size</source>
        <translation>Größte Dateigröße</translation>
    </message>
    <message>
        <source>Files larger than this are left out of the search.</source>
        <translation>Größere Dateien lässt die Suche aus.</translation>
    </message>
    <message>
        <source>The search looks at every file.</source>
        <translation>Die Suche prüft jede Datei.</translation>
    </message>
    <message>
        <source>Only these extensions</source>
        <translation>Nur diese Endungen</translation>
    </message>
    <message>
        <source>The search looks only at files whose extension is in the list.</source>
        <translation>Die Suche prüft nur Dateien, deren Endung in der Liste steht.</translation>
    </message>
    <message>
        <source>File extensions</source>
        <translation>Dateiendungen</translation>
    </message>
    <message>
        <source>The extensions the search looks for.</source>
        <translation>Die Endungen, auf die sich die Suche beschränkt.</translation>
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
        <source>Cleaning moves the marked copies to the Trash, from where they can be put back.</source>
        <translation>Beim Bereinigen werden die markierten Kopien in den Papierkorb verschoben, aus dem sie zurückgeholt werden können.</translation>
    </message>
    <message>
        <source>Cleaning deletes the marked copies; they cannot be put back.</source>
        <translation>Beim Bereinigen werden die markierten Kopien gelöscht; sie können nicht zurückgeholt werden.</translation>
    </message>
    <message>
        <source>Share the storage of duplicate files</source>
        <translation>Speicherplatz doppelter Dateien teilen</translation>
    </message>
    <message>
        <source>Decide oldest and newest by exact time</source>
        <translation>Älteste und neueste nach exakter Zeit bestimmen</translation>
    </message>
    <message>
        <source>Skip packages</source>
        <translation>Pakete überspringen</translation>
    </message>
    <message>
        <source>Application bundles and similar folders are not searched.</source>
        <translation>Anwendungsbündel und ähnliche Ordner werden nicht durchsucht.</translation>
    </message>
    <message>
        <source>Find duplicate files</source>
        <translation>Doppelte Dateien finden</translation>
    </message>
    <message>
        <source>Searches the folders listed with these options and shows the duplicates found.</source>
        <translation>Durchsucht die aufgeführten Ordner mit diesen Optionen und zeigt die gefundenen doppelten Dateien.</translation>
    </message>
    <message>
        <source>Keep Oldest and Keep Newest compare the exact creation times instead of the dates shown, which go by the second on a 12-hour clock.</source>
        <translation>„Älteste behalten“ und „Neueste behalten“ vergleichen die exakten Erstellungszeiten statt der angezeigten Daten, die nur sekundengenau und im 12-Stunden-Format sind.</translation>
    </message>
    <message>
        <source>Search listed folders wherever they are, not only under /home, /opt and the volume folders.</source>
        <translation>Aufgeführte Ordner durchsuchen, wo immer sie liegen, nicht nur unter /home, /opt und den Ordnern der Datenträger.</translation>
    </message>
    <message>
        <source>Search Any Location</source>
        <translation>Überall suchen</translation>
    </message>
    <message>
        <source>Tick &quot;Search any location&quot; so these folders are searched too.</source>
        <translation>Setzen Sie „Überall suchen“, damit auch diese Ordner durchsucht werden.</translation>
    </message>
    <message>
        <source>&amp;Reopen Last Folders</source>
        <translation>&amp;Letzte Ordner wieder öffnen</translation>
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
<context>
    <name>twinsweep::ui::ViewControllerDuplicates</name>
    <message>
        <source>Twinsweep can&apos;t keep a record to undo this clean: %1. Nothing was removed.</source>
        <translation>Twinsweep kann keinen Eintrag zum Rückgängigmachen dieser Bereinigung anlegen: %1. Es wurde nichts entfernt.</translation>
    </message>
    <message>
        <source>Twinsweep could not keep the record to undo this clean: %1. Nothing more was moved to the Trash.</source>
        <translation>Twinsweep konnte den Eintrag zum Rückgängigmachen dieser Bereinigung nicht anlegen: %1. Es wurde nichts weiter in den Papierkorb verschoben.</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Show in File &amp;Manager</source>
        <translation>In der &amp;Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>File &amp;Info</source>
        <translation>Datei&amp;informationen</translation>
    </message>
    <message>
        <source>&amp;Clean...</source>
        <translation>&amp;Bereinigen...</translation>
    </message>
    <message>
        <source>&amp;Export...</source>
        <translation>&amp;Exportieren...</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Mark or Unmark</source>
        <translation>&amp;Markieren oder Markierung aufheben</translation>
    </message>
    <message>
        <source>&amp;Apply to All Groups</source>
        <translation>Auf &amp;alle Gruppen anwenden</translation>
    </message>
    <message>
        <source>CSV files (*.csv)</source>
        <translation>CSV-Dateien (*.csv)</translation>
    </message>
    <message>
        <source>JSON files (*.json)</source>
        <translation>JSON-Dateien (*.json)</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>The results could not be exported to %1: %2</source>
        <translation>Die Ergebnisse konnten nicht nach %1 exportiert werden: %2</translation>
    </message>
    <message>
        <source>Duplicate Files</source>
        <translation>Doppelte Dateien</translation>
    </message>
    <message>
        <source>Select:</source>
        <translation>Auswahl:</translation>
    </message>
    <message>
        <source>Keep All</source>
        <translation>Alle behalten</translation>
    </message>
    <message>
        <source>Keep Oldest</source>
        <translation>Älteste behalten</translation>
    </message>
    <message>
        <source>Keep Newest</source>
        <translation>Neueste behalten</translation>
    </message>
    <message>
        <source>Remove All</source>
        <translation>Alle entfernen</translation>
    </message>
    <message>
        <source>Custom…</source>
        <translation>Benutzerdefiniert…</translation>
    </message>
    <message>
        <source>Apply to all groups</source>
        <translation>Auf alle Gruppen anwenden</translation>
    </message>
    <message>
        <source>Show in File Manager</source>
        <translation>In der Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>File Info</source>
        <translation>Dateiinformationen</translation>
    </message>
    <message>
        <source>Export...</source>
        <translation>Exportieren...</translation>
    </message>
    <message>
        <source>Save the listed groups and their marks as CSV or JSON</source>
        <translation>Die aufgelisteten Gruppen und ihre Markierungen als CSV oder JSON speichern</translation>
    </message>
    <message>
        <source>Categories</source>
        <translation>Kategorien</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Music</source>
        <translation>Musik</translation>
    </message>
    <message>
        <source>Movies</source>
        <translation>Filme</translation>
    </message>
    <message>
        <source>Archives</source>
        <translation>Archive</translation>
    </message>
    <message>
        <source>Documents</source>
        <translation>Dokumente</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Sonstige</translation>
    </message>
    <message>
        <source>Space saved:</source>
        <translation>Gesparter Speicherplatz:</translation>
    </message>
    <message>
        <source>Clean</source>
        <translation>Bereinigen</translation>
    </message>
    <message>
        <source>Keep option</source>
        <translation>Behalten-Option</translation>
    </message>
    <message>
        <source>Which copies of the selected group are marked for removal.</source>
        <translation>Welche Kopien der ausgewählten Gruppe zum Entfernen markiert werden.</translation>
    </message>
    <message>
        <source>Marks no copy: every copy is kept.</source>
        <translation>Markiert keine Kopie: Alle Kopien bleiben.</translation>
    </message>
    <message>
        <source>Marks every copy but the oldest.</source>
        <translation>Markiert alle Kopien außer der ältesten.</translation>
    </message>
    <message>
        <source>Marks every copy but the newest.</source>
        <translation>Markiert alle Kopien außer der neuesten.</translation>
    </message>
    <message>
        <source>Marks every copy of the group.</source>
        <translation>Markiert jede Kopie der Gruppe.</translation>
    </message>
    <message>
        <source>Opens the custom selection, which marks copies by date and size rules.</source>
        <translation>Öffnet die benutzerdefinierte Auswahl, die Kopien nach Datums- und Größenregeln markiert.</translation>
    </message>
    <message>
        <source>When ticked, the keep option chosen applies to every listed group.</source>
        <translation>Wenn gesetzt, gilt die gewählte Behalten-Option für jede aufgeführte Gruppe.</translation>
    </message>
    <message>
        <source>Updating</source>
        <translation>Wird aktualisiert</translation>
    </message>
    <message>
        <source>Shown while the marks are worked out.</source>
        <translation>Wird angezeigt, während die Markierungen berechnet werden.</translation>
    </message>
    <message>
        <source>Filter by path</source>
        <translation>Nach Pfad filtern</translation>
    </message>
    <message>
        <source>Lists only the groups with a copy whose path holds this text.</source>
        <translation>Führt nur die Gruppen auf, die eine Kopie haben, deren Pfad diesen Text enthält.</translation>
    </message>
    <message>
        <source>Duplicate groups</source>
        <translation>Gruppen doppelter Dateien</translation>
    </message>
    <message>
        <source>One row per group of identical files: name, size and copies marked. Selecting a row lists its copies.</source>
        <translation>Eine Zeile je Gruppe gleicher Dateien: Name, Größe und markierte Kopien. Eine ausgewählte Zeile führt ihre Kopien auf.</translation>
    </message>
    <message>
        <source>Copies of the selected group</source>
        <translation>Kopien der ausgewählten Gruppe</translation>
    </message>
    <message>
        <source>Every copy with its path and date; a ticked box marks the copy for removal. Space ticks or unticks the current copy.</source>
        <translation>Jede Kopie mit Pfad und Datum; ein gesetztes Häkchen markiert die Kopie zum Entfernen. Die Leertaste setzt oder entfernt das Häkchen der aktuellen Kopie.</translation>
    </message>
    <message>
        <source>Opens the folder of the current copy in the file manager.</source>
        <translation>Öffnet den Ordner der aktuellen Kopie in der Dateiverwaltung.</translation>
    </message>
    <message>
        <source>Shows the details of the current copy.</source>
        <translation>Zeigt die Angaben zur aktuellen Kopie.</translation>
    </message>
    <message>
        <source>Saves the listed groups and their marks as CSV or JSON.</source>
        <translation>Speichert die aufgeführten Gruppen und ihre Markierungen als CSV oder JSON.</translation>
    </message>
    <message>
        <source>When ticked, the groups of this kind of file are listed.</source>
        <translation>Wenn gesetzt, werden die Gruppen dieser Dateiart aufgeführt.</translation>
    </message>
    <message>
        <source>Share of the duplicates</source>
        <translation>Anteil an den doppelten Dateien</translation>
    </message>
    <message>
        <source>Removes the marked copies, after asking.</source>
        <translation>Entfernt die markierten Kopien nach einer Rückfrage.</translation>
    </message>
    <message>
        <source>%1. Nothing was removed.</source>
        <translation>%1. Es wurde nichts entfernt.</translation>
    </message>
    <message>
        <source>Lists only the groups with a copy whose path holds this text</source>
        <translation>Führt nur die Gruppen auf, die eine Kopie haben, deren Pfad diesen Text enthält</translation>
    </message>
    <message>
        <source>1 item could not be read</source>
        <translation>1 Objekt konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>%1 items could not be read</source>
        <translation>%1 Objekte konnten nicht gelesen werden</translation>
    </message>
    <message>
        <source>1 group</source>
        <translation>1 Gruppe</translation>
    </message>
    <message>
        <source>%1 groups</source>
        <translation>%1 Gruppen</translation>
    </message>
    <message>
        <source>%1 of 1 group</source>
        <translation>%1 von 1 Gruppe</translation>
    </message>
    <message>
        <source>%1 of %2 groups</source>
        <translation>%1 von %2 Gruppen</translation>
    </message>
    <message>
        <source>1 copy</source>
        <translation>1 Kopie</translation>
    </message>
    <message>
        <source>%1 copies</source>
        <translation>%1 Kopien</translation>
    </message>
    <message>
        <source>%1, %2, %3</source>
        <translation>%1, %2, %3</translation>
    </message>
    <message>
        <source>Mark</source>
        <translation>Markieren</translation>
    </message>
    <message>
        <source>Unmark</source>
        <translation>Markierung aufheben</translation>
    </message>
    <message>
        <source>Protect This Folder</source>
        <translation>Diesen Ordner schützen</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::ViewControllerInfo</name>
    <message>
        <source>File Information</source>
        <translation>Dateiinformationen</translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Name:</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Größe:</translation>
    </message>
    <message>
        <source>Extension:</source>
        <translation>Endung:</translation>
    </message>
    <message>
        <source>Created:</source>
        <translation>Erstellt:</translation>
    </message>
    <message>
        <source>Modified:</source>
        <translation>Geändert:</translation>
    </message>
    <message>
        <source>Path:</source>
        <translation>Pfad:</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>The file&apos;s picture, or the icon of its type.</source>
        <translation>Das Bild der Datei oder das Symbol ihres Typs.</translation>
    </message>
    <message>
        <source>Loading the preview</source>
        <translation>Vorschau wird geladen</translation>
    </message>
    <message>
        <source>Shown while the file&apos;s picture is read.</source>
        <translation>Wird angezeigt, während das Bild der Datei gelesen wird.</translation>
    </message>
    <message>
        <source>The file&apos;s name without its extension.</source>
        <translation>Der Name der Datei ohne ihre Endung.</translation>
    </message>
    <message>
        <source>The size of the file.</source>
        <translation>Die Größe der Datei.</translation>
    </message>
    <message>
        <source>The file&apos;s extension.</source>
        <translation>Die Endung der Datei.</translation>
    </message>
    <message>
        <source>When the file was created.</source>
        <translation>Wann die Datei erstellt wurde.</translation>
    </message>
    <message>
        <source>When the file was last changed.</source>
        <translation>Wann die Datei zuletzt geändert wurde.</translation>
    </message>
    <message>
        <source>The folder and name of the file.</source>
        <translation>Ordner und Name der Datei.</translation>
    </message>
</context>
<context>
    <name>twinsweep::ui::ViewControllerProgress</name>
    <message>
        <source>Searching for Duplicate Files</source>
        <translation>Suche nach doppelten Dateien</translation>
    </message>
    <message>
        <source>Looking for duplicate files...</source>
        <translation>Doppelte Dateien werden gesucht...</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>No duplicate files found.</source>
        <translation>Keine doppelten Dateien gefunden.</translation>
    </message>
    <message>
        <source>Cancelling...</source>
        <translation>Wird abgebrochen...</translation>
    </message>
    <message>
        <source>Search progress</source>
        <translation>Fortschritt der Suche</translation>
    </message>
    <message>
        <source>Share of the search done</source>
        <translation>Erledigter Anteil der Suche</translation>
    </message>
    <message>
        <source>Stops the search; the window closes once it has stopped.</source>
        <translation>Bricht die Suche ab; das Fenster schließt sich, sobald sie beendet ist.</translation>
    </message>
</context>
</TS>

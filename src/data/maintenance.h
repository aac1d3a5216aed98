#pragma once

namespace lotwise {

class Application;

// File maintenance of the File and Options menus: compress and repair of the
// data files with their ".bak" copies, deletion of those copies, and the
// notice that replaced the old backup commands.

// Open the compress/repair dialog in its compress or repair mode.
void ShowCompress(Application& app);
void ShowRepair(Application& app);
// The delete-backups dialog.
void ShowDelBackups(Application& app);
// The notice that the program has no backup or restore function (restore
// shows the same notice).
void BackupToDisk(Application& app);
void RestoreFromDisk(Application& app);

}  // namespace lotwise

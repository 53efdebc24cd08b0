// SPDX-License-Identifier: GPL-3.0-or-later
// Runs only the folder walk over the given folders (no gate, every size) and
// prints how many files it accepted. Used by bench/walk.sh.
#include <cstdio>
#include <string>
#include <vector>

#include "engine/FileTools.h"

int main(int argc, char** argv) {
    std::vector<std::string> folders(argv + 1, argv + argc);
    twinsweep::FileTools tools;
    tools.locationGate = twinsweep::LocationGate::anywhere();
    tools.scanFolders(folders, true, {}, 0, UINT64_MAX);
    std::printf("%zu\n", tools.fileList.size());
    return 0;
}

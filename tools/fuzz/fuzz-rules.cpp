// SPDX-License-Identifier: GPL-3.0-or-later
// Feeds arbitrary bytes to the custom-rule text reader. A text it accepts must
// write back to a text that reads the same; a text it refuses must leave every
// field as it was.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "selection/CustomSettingsText.h"
#include "settings/SettingsManager.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    twinsweep::SettingsManager settings;
    const std::string before = twinsweep::customSettingsText(settings);
    if (!twinsweep::loadCustomSettings(settings, text)) {
        if (twinsweep::customSettingsText(settings) != before) {
            std::abort(); // a refused text changed something
        }
        return 0;
    }
    const std::string written = twinsweep::customSettingsText(settings);
    twinsweep::SettingsManager again;
    if (!twinsweep::loadCustomSettings(again, written) ||
        twinsweep::customSettingsText(again) != written) {
        std::abort(); // what we write we must read back unchanged
    }
    return 0;
}

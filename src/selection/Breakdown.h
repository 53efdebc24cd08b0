// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "engine/File.h"
#include "engine/FileTools.h"

namespace twinsweep {

// Categories by code 1 to 6: pictures, music, movies, archives, documents,
// other. Arrays below are indexed by code - 1.
inline constexpr int kCategoryCount = 6;
using CategoryFlags = std::array<bool, kCategoryCount>;

// The six bars (percentages, 0 to 100) and their texts ("37%").
struct CategoryFigures {
    std::array<double, kCategoryCount> bars{};
    std::array<std::string, kCategoryCount> texts{"0%", "0%", "0%", "0%", "0%", "0%"};

    bool operator==(const CategoryFigures&) const = default;
};

// How the space held by the groups divides among the categories: each group
// counts its size once per member, marked or not, whatever is shown. With no
// groups, or groups of empty files only, every figure is 0 and 0%.
CategoryFigures categoryPercentages(const FileTools& tools, const FileList& duplicateFileList);

// A percentage as the window shows it: no decimals, ties to even, then "%".
std::string percentText(double percent);

// The groups of list, in order, whose category is not code.
FileList removeCategory(const FileTools& tools, int code, const FileList& list);

// The groups of duplicateFileList, in order, less those of hidden categories.
FileList listedGroups(const FileTools& tools, const FileList& duplicateFileList,
                      const CategoryFlags& shown);

// A text colour as a value; the desktop layer turns it into its own colour.
struct TextColour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const TextColour&) const = default;
};

inline constexpr TextColour kPlainTextColour{0, 0, 0};
inline constexpr TextColour kSavingTextColour{27, 209, 51};

// The bytes that cleaning the listed groups would free, their size text and
// the colour to show them in: black for nothing, green otherwise.
struct SpaceSaved {
    std::uint64_t bytes = 0;
    std::string text;
    TextColour colour = kPlainTextColour;

    bool operator==(const SpaceSaved&) const = default;
};

SpaceSaved spaceSaved(const FileTools& tools, const FileList& listed);

} // namespace twinsweep

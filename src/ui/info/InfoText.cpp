// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/info/InfoText.h"

#include <QFile>
#include <QImageReader>
#include <array>
#include <string_view>

#include "engine/File.h"

namespace twinsweep::ui {

namespace {

// Position of the extension's dot in path, or npos.
std::size_t extensionDot(const std::string& path, std::size_t nameStart) {
    const auto dot = path.find_last_of('.');
    if (dot == std::string::npos || dot <= nameStart) {
        return std::string::npos;
    }
    return dot;
}

std::size_t nameStart(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? 0 : slash + 1;
}

} // namespace

std::string nameWithoutExtension(const std::string& path) {
    const std::size_t start = nameStart(path);
    const std::size_t dot = extensionDot(path, start);
    return path.substr(start, dot == std::string::npos ? std::string::npos : dot - start);
}

std::string extensionKeepingCase(const std::string& path) {
    const std::size_t dot = extensionDot(path, nameStart(path));
    return dot == std::string::npos ? std::string() : path.substr(dot + 1);
}

bool isPreviewPicture(const std::string& extension) {
    static constexpr std::array<std::string_view, 10> kPictures = {
        "jpg", "jpeg", "jpe", "jp2", "jpx", "png", "tiff", "tif", "gif", "bmp"};
    std::string lower = extension;
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    for (std::string_view known : kPictures) {
        if (lower == known) {
            return true;
        }
    }
    return false;
}

QImage loadPreviewPicture(const std::string& path, QSize bound) {
    if (!isPreviewPicture(extensionKeepingCase(path))) {
        return {};
    }
    QImageReader reader(QFile::decodeName(QByteArray::fromStdString(path)));
    reader.setAutoTransform(true);
    // Decode big pictures straight to the preview's size, not at full size.
    const QSize full = reader.size();
    if (full.isValid() && (full.width() > bound.width() || full.height() > bound.height())) {
        reader.setScaledSize(full.scaled(bound, Qt::KeepAspectRatio));
    }
    return reader.read();
}

} // namespace twinsweep::ui

#include "DocumentReading.h"

#include "MemoryShortage.h"
#include "ShownName.h"

DocumentReading DocumentReading::withoutMemory(const QString& path) {
    return {std::unexpected(memoryShortage(QStringLiteral("abrir “%1”").arg(shownFileName(path)))),
            std::nullopt};
}

DocumentReading DocumentReading::of(const DocumentType& type, const QString& path,
                                    const std::stop_token& stop) {
    // First what the disk knows of the file.
    const auto version = FileIdentity::of(path);
    return {type.read(path, stop), version ? std::optional(*version) : std::nullopt};
}

DocumentReading DocumentReading::of(const DocumentType& type, const QString& path,
                                    const Document::Preparation& preparation, const std::stop_token& stop) {
    DocumentReading reading = of(type, path, stop);
    if (reading.contents && !stop.stop_requested()) {
        preparation(**reading.contents, stop);
    }
    return reading;
}

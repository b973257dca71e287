#include "FileSave.h"

#include "AtomicFile.h"

namespace {

/// Whether another file than the one in the version `known`, or one of an unknown version, is at `path`.
/// Reads the file where its contents decide.
bool isChanged(const QString& path, const std::optional<FileIdentity>& known, const std::stop_token& stop) {
    const auto found = FileIdentity::of(path);
    if (!found || !known) {
        return found.has_value();
    }
    if (found->isUntouched(*known)) {
        return false;
    }
    const auto content = FileIdentity::withContent(path, stop);
    return !content || !content->hasSameContent(*known);
}

} // namespace

FileSave::Result FileSave::run() const {
    const auto result = [](Outcome outcome) { return Result{.outcome = outcome}; };
    const auto there = FileIdentity::of(path);
    const auto replaced = replacesAny ? (there ? std::optional(*there) : std::nullopt) : known;
    if (!replacesAny && isChanged(path, known, gate->stop())) {
        return result(gate->isOpen() ? Outcome::changed : Outcome::cancelled);
    }
    if (!links && AtomicFile::nameCount(path) > 1) {
        return result(Outcome::shared);
    }
    bool isConflict = false;
    const auto mayReplace = [&] {
        isConflict = isChanged(path, replaced, gate->stop());
        return !isConflict && gate->pass();
    };
    auto written = write(path, {.stop = gate->stop(),
                                .mayReplace = mayReplace,
                                .links = links.value_or(FileReplacement::Links::separated)});
    if (written) {
        const auto version = FileIdentity::of(path);
        return {.outcome = AtomicFile::syncName(path) ? Outcome::saved : Outcome::unconfirmed,
                .version = version ? std::optional(*version) : std::nullopt};
    }
    if (gate->stop().stop_requested()) {
        return result(Outcome::cancelled);
    }
    return isConflict ? result(Outcome::changedMeanwhile)
                      : Result{.outcome = Outcome::failed, .failure = written.error()};
}

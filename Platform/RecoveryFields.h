#pragma once

#include "Bytes.h"
#include "RecoveryState.h"

#include <QtEndian>

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Takes fields, with numbers in little-endian order, from the front of a recovery record. A field that is
/// too short gives zeros, and so do all that follow it.
class RecoveryFields {
public:
    explicit RecoveryFields(Bytes rest) : m_rest(rest) {}

    Bytes bytes(std::size_t count) {
        m_isGood = m_isGood && count <= m_rest.size();
        const Bytes taken = m_isGood ? m_rest.first(count) : Bytes();
        m_rest = m_rest.subspan(taken.size());
        return taken;
    }

    template <std::integral Number>
    Number number() {
        const Bytes taken = bytes(sizeof(Number));
        return m_isGood ? qFromLittleEndian<Number>(taken.data()) : Number{};
    }

    Bytes countedBytes() { return bytes(number<std::uint32_t>()); }
    SourceRange range();
    std::optional<FileIdentity> version();
    Bytes rest() { return bytes(m_rest.size()); }

    bool isGood() const { return m_isGood; }

private:
    Bytes m_rest;
    bool m_isGood = true;
};

/// The facts of a payload, which have the same form in each version of the format.
std::optional<RecoveryFacts> recoveryFacts(Bytes payload);

/// The units of a payload's bytes behind their form. Absent if the bytes are not of that form.
std::optional<std::u16string> recoveryUnits(std::uint8_t form, Bytes bytes);

/// The forms of units in a payload.
enum RecoveryUnitForm : std::uint8_t { inUTF8 = 0, inUTF16 = 1 };

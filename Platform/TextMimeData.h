#pragma once

#include "Rope.h"

#include <QMimeData>

#include <string>

/// Text on its way through the clipboard or to where it is dropped, turned into bytes only when somebody asks
/// for them. Beside plain text for other programs it offers the units as they are, since plain text loses
/// lone surrogates.
class TextMimeData : public QMimeData {
    Q_OBJECT

public:
    explicit TextMimeData(Rope text) : m_text(std::move(text)) {}

    const Rope& rope() const { return m_text; }

    /// Whether `data` carries text.
    static bool hasUnits(const QMimeData& data);

    /// The text that `data` carries; empty when it carries none.
    static std::u16string units(const QMimeData& data);

    /// The same with the line ends of `into`, where it is put; a text of one line takes those of `data`.
    static std::u16string units(const QMimeData& data, const Rope& into);

    QStringList formats() const override;
    bool hasFormat(const QString& type) const override;

protected:
    QVariant retrieveData(const QString& type, QMetaType wanted) const override;

private:
    Rope m_text;
};

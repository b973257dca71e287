#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QStringList>

namespace {

/// Every string literal of a source as it is written there, without its quotes. Literals one after the other
/// are one string.
QStringList literals(const QString& source) {
    static const QRegularExpression token(
        QStringLiteral(R"re(//[^\n]*|'(?:[^'\\]|\\.)'|u?R"\((?s:.*?)\)"|"((?:[^"\\\n]|\\.)*)")re"));
    static const QRegularExpression between(QStringLiteral(R"(^\s*u?$)"));
    QStringList found;
    qsizetype endOfLast = -1;
    for (auto match = token.globalMatch(source); match.hasNext();) {
        const QRegularExpressionMatch next = match.next();
        if (!next.hasCaptured(1)) {
            continue;
        }
        const QString gap =
            endOfLast < 0 ? QStringLiteral("-") : source.mid(endOfLast, next.capturedStart() - endOfLast);
        if (between.match(gap).hasMatch()) {
            found.back() += next.captured(1);
        } else {
            found += next.captured(1);
        }
        endOfLast = next.capturedEnd();
    }
    return found;
}

/// The strings of the program that read like a sentence or a part of one.
QStringList interfaceTexts() {
    static const QRegularExpression words(
        QStringLiteral(R"([\p{L}%0-9]+[,;:.”…]* [\p{L}%“¿(]+|^\p{Lu}\p{Ll}+…?$)"));
    QStringList texts;
    for (const auto* folder : {"/XMLCore", "/Platform", "/Tamo"}) {
        QDirIterator files(QStringLiteral(TAMO_SOURCE_DIR) + QLatin1String(folder),
                           {QStringLiteral("*.cpp"), QStringLiteral("*.h")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly));
            texts += literals(QString::fromUtf8(file.readAll())).filter(words);
        }
    }
    return texts;
}

/// The interface texts in which `pattern` occurs.
QStringList textsWith(const QString& pattern) {
    const QRegularExpression expression(pattern, QRegularExpression::CaseInsensitiveOption |
                                                     QRegularExpression::UseUnicodePropertiesOption);
    return interfaceTexts().filter(expression);
}

std::string list(const QStringList& texts) { return texts.join(u'\n').toStdString(); }

} // namespace

TEST(InterfaceText, IsFoundInTheSources) {
    const QStringList texts = interfaceTexts();
    EXPECT_GT(texts.size(), 100);
    EXPECT_TRUE(texts.contains(QStringLiteral("El documento está bien formado")));
    // Of two literals.
    EXPECT_FALSE(texts.filter(QStringLiteral("si el programa se interrumpe"), Qt::CaseInsensitive).isEmpty());
}

TEST(InterfaceText, SaysTu) {
    const QStringList texts = textsWith(QStringLiteral(
        R"(\b(ustedes|usted|compruebe|desea|elija|escriba|guarde|haga|intente|los guarda|pruebe|pulse|quiere|)"
        R"(recupere|revise|seleccione|tiene cambios|tiene permiso|vuelva)\b)"));
    EXPECT_TRUE(texts.isEmpty()) << list(texts);
}

TEST(InterfaceText, CallsAFileArchivo) {
    const QStringList texts = textsWith(QStringLiteral(R"(\bficheros?\b)"));
    EXPECT_TRUE(texts.isEmpty()) << list(texts);
}

TEST(InterfaceText, QuotesWithCurlyQuotes) {
    QStringList texts = textsWith(QStringLiteral(R"([«»]|(?<!=)\\"(%|\p{L}))"));
    // What the toolkit says in English, which is translated.
    texts.removeIf([](const QString& text) { return text.contains(QStringLiteral("The name ")); });
    EXPECT_TRUE(texts.isEmpty()) << list(texts);
}

TEST(InterfaceText, EndsInAnEllipsisNotInDots) {
    const QStringList texts = textsWith(QStringLiteral(R"(\.\.\.)"));
    EXPECT_TRUE(texts.isEmpty()) << list(texts);
}

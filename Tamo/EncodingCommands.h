#pragma once

#include "BackgroundTask.h"
#include "DocumentError.h"
#include "DocumentReading.h"
#include "EncodingChoice.h"
#include "EncodingPreview.h"
#include "Rope.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>

class DocumentWindow;
class EditorDocument;
class NoticeBar;

/// What the window of a document asks and tells about its encoding: reads the file in another one, writes it
/// in another one, sees to it before each save that the file will be read as it is written, and tells what
/// had to be assumed when it was read.
class EncodingCommands : public QObject {
    Q_OBJECT

public:
    EncodingCommands(EditorDocument& document, DocumentWindow& window, QObject* parent);
    ~EncodingCommands() override;

    /// Adds the commands to a window, which may have no document yet.
    static void addTo(DocumentWindow& window);

    /// Asks for an encoding and reads the file in it, as one step of undo.
    void reopen();

    /// Asks for encoding, line ends and mark, and saves so. What changes in the text is one step of undo.
    void save();

    /// Where the file called `name` would be read otherwise than it is to be written, asks which of the two
    /// holds. Returns false when the user wants neither.
    bool settleConflict(const QString& name);

    /// Writes the document so from now on; its declaration follows. One step of undo.
    void change(const EncodingChoice& choice);

private:
    /// How the document is to be saved.
    struct Plan {
        EncodingChoice choice;
        std::u16string lineEnding; ///< Empty where line ends stay as they are.
    };
    /// What a worker found out about a plan.
    struct Check {
        std::optional<Rope> text; ///< With other line ends, where these change something.
        std::optional<UnencodableText> unencodable;
    };

    void askForReading(FileStart start);
    void readAgain(const StringEncoding& encoding);
    void finishReading(DocumentReading reading);
    void tellUnreadable();
    void check(const Plan& plan);
    void finishCheck(const Plan& plan, std::int64_t generation, Check check);
    void tellUnencodable(const Plan& plan, const UnencodableText& text);
    void carryOut(const Plan& plan, const std::optional<Rope>& text);
    void showProgress(const QString& text, std::function<void()> cancel);
    void hideProgress();
    void showDoubt();
    void hideDoubt();
    std::u16string textStart() const;

    EditorDocument& m_document;
    DocumentWindow& m_window;
    BackgroundTask<FileStart> m_starting;
    BackgroundTask<DocumentReading> m_reading;
    BackgroundTask<Check> m_checking;
    QTimer m_patience;
    QPointer<NoticeBar> m_doubtBar;
    std::optional<EncodingConflict> m_accepted; ///< The user wants the file written so all the same.
};

#pragma once

#include "NodeAddition.h"

#include <QObject>
#include <QPointer>

class EditorSession;
class QDialog;
class QWidget;

/// The dialogs in which the user writes new nodes: the root element of a document without one, texts and
/// comments. One at a time, over the window of a widget.
class InsertionPrompts : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    InsertionPrompts(EditorSession& session, QWidget& over);

    /// Asks for the name of the root element. Nothing happens where there is one.
    void askForRoot();
    /// Asks for a text or a comment at the selected node. Nothing happens without one.
    void askForText();
    void askForComment();

private:
    void show(QDialog* dialog);
    void apply(const NodeAddition::Result& plan, const QString& actionName);
    std::u16string units(const QString& text) const;

    EditorSession& m_session;
    QWidget& m_over;
    QPointer<QDialog> m_dialog;
};

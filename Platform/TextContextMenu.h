#pragma once

#include <QMenu>

class TextView;

/// What can be done with the text of a view, as its context menu offers it; good for one time.
class TextContextMenu : public QMenu {
    Q_OBJECT

public:
    explicit TextContextMenu(TextView& view);
};

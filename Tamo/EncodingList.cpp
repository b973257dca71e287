#include "EncodingList.h"

#include "EncodingName.h"
#include "SystemFont.h"

#include <QHeaderView>

namespace {

constexpr int nameRole = Qt::UserRole;

QString declaredName(const StringEncoding& encoding) {
    const std::string_view name = encoding.declaredName();
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}

QByteArray key(const StringEncoding& encoding) {
    const std::string_view name = encoding.converterName();
    return {name.data(), static_cast<qsizetype>(name.size())};
}

QTreeWidgetItem* makeItem(const StringEncoding& encoding) {
    auto* const item = new QTreeWidgetItem({localizedName(encoding), declaredName(encoding)});
    item->setData(0, nameRole, key(encoding));
    item->setForeground(1, QPalette().placeholderText());
    return item;
}

} // namespace

EncodingList::EncodingList(const Filter& isOffered, QWidget* parent) : QTreeWidget(parent) {
    setAccessibleName(QStringLiteral("Codificación"));
    setColumnCount(2);
    setHeaderHidden(true);
    setUniformRowHeights(true);
    for (const EncodingGroup& group : encodingGroups()) {
        auto* const title = new QTreeWidgetItem({group.title});
        title->setFont(0, SystemFont::semibold(SystemFont::body()));
        title->setFlags(Qt::ItemIsEnabled);
        for (const StringEncoding& encoding : group.encodings) {
            if (isOffered(encoding)) {
                title->addChild(makeItem(encoding));
            }
        }
        if (title->childCount() > 0) {
            addTopLevelItem(title);
            title->setFirstColumnSpanned(true);
        } else {
            delete title;
        }
    }
    topLevelItem(0)->setExpanded(true);
    header()->setStretchLastSection(true);
    header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    connect(this, &QTreeWidget::currentItemChanged, this, &EncodingList::chosenChanged);
}

std::optional<StringEncoding> EncodingList::chosen() const {
    const QTreeWidgetItem* const item = currentItem();
    return item == nullptr ? std::nullopt
                           : StringEncoding::named(item->data(0, nameRole).toByteArray().toStdString());
}

void EncodingList::choose(const StringEncoding& encoding) {
    for (QTreeWidgetItemIterator at(this); *at != nullptr; ++at) {
        if ((*at)->data(0, nameRole).toByteArray() == key(encoding)) {
            setCurrentItem(*at);
            scrollToItem(*at);
            return;
        }
    }
}

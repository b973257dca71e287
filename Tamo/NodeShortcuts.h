#pragma once

#include <QKeySequence>

/// The keys of the commands on the selected node, wherever a menu has them.
namespace NodeShortcuts {

inline constexpr QKeyCombination addChild = Qt::CTRL | Qt::Key_Return;
inline constexpr QKeyCombination addSibling = Qt::CTRL | Qt::SHIFT | Qt::Key_Return;
inline constexpr QKeyCombination wrap = Qt::CTRL | Qt::ALT | Qt::Key_W;
inline constexpr QKeyCombination duplicate = Qt::CTRL | Qt::Key_D;
inline constexpr QKeyCombination copyPath = Qt::CTRL | Qt::SHIFT | Qt::Key_C;

} // namespace NodeShortcuts

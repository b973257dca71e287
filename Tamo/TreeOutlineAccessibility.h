#pragma once

class TreeOutlineView;

/// What assistive technology sees of the outline: a tree whose items are its rows, each made when it is asked
/// for, whatever the number of rows. An item can be chosen, expanded and collapsed; a row with children has a
/// button for the latter, as it has on the screen.
namespace TreeOutlineAccessibility {

/// Has the platform ask here about outlines. More than once does no harm.
void install();

/// Tells that other rows are shown, or that another one is selected.
void rowsChanged(TreeOutlineView& view);
void selectionChanged(TreeOutlineView& view);

} // namespace TreeOutlineAccessibility

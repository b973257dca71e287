#pragma once

#include "MutationPlanner.h"

#include <QString>

/// Why a change of the tree was refused, for the user to read. Plain text: it may hold a name from the
/// document.
QString message(const MutationPlanner::Failure& failure);

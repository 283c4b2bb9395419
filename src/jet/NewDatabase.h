#pragma once

#include "jet/PageStore.h"
#include "jet/Value.h"

namespace drx9::jet {

/// Lays an empty database out in a store fresh from PageStore::create: header, global map, the four system
/// tables and their rows. Inside a Change, which saves it.
void writeEmptyDatabase(PageStore& store, DateTime created);

} // namespace drx9::jet

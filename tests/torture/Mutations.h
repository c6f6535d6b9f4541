#pragma once

#include "tests/torture/Bench.h"

namespace Torture {

/// A protection of the engine that is turned off below it, as if the engine did without.
enum class Mutation {
  copiesNotFlushed,
  foldersNotFlushed,
  volumesNotFlushed,
  movedNotFlushed,      ///< where a moved file has no size until then
  flushErrorsLost,      ///< flushing a folder or a volume always says yes
  namedBeforeReadBack,  ///< the copy has its final name as soon as it is written
  readBackFromMemory,   ///< the read-back gets what was given to write
  moveReplaces,         ///< a move takes a name that is taken
  cardReadOnce,         ///< the second reading of the card gets what the first one got
};

/// A wrap that turns the protection off.
Wrap broken(Mutation mutation);

}  // namespace Torture

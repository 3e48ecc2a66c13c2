#pragma once

namespace velkrund::bench {

/// Registers the reading of the lines of trees from memory, in bytes of these lines a second: "small trees" reads trees
/// of a hundred nodes one after the other, each dropped before the next; "large tree again" one of a million nodes into
/// memory that the process has used before, and "large tree first" into memory that the system has yet to hand out. The
/// dropping of the large one does not count.
void RegisterTreeReading();

}  // namespace velkrund::bench

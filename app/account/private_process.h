// Keeping to its owner what this process leaves on the disk.
#pragma once

namespace app {

/// From now on nobody else may read the files that the process makes, and a crash writes no core file: it would hold
/// keys and messages. Where the system hands cores to a program of its own, that program decides.
void keepPrivate();

}  // namespace app

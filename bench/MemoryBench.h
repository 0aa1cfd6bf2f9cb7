#pragma once

/// Prints what 100,000 runs, and 100,000 images made and dropped, leave in memory.
void measureMemory();

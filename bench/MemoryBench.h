#pragma once

/// Prints how much memory 100,000 runs leave behind, and 100,000 images that are created and freed.
void measureMemory();

#pragma once

/// Says how many host images the running test leaves behind on purpose; 0 unless called.
void expectLeftImages(int count);

#pragma once

/// Sets how many host images the running test may leave behind; 0 unless a test calls this.
void expectLeftImages(int count);

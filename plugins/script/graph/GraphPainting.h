#pragma once

class CxImageData;
struct CxGraphData;
struct SxPicBuf;

/// Whether a graph can be drawn into a buffer. The buffer must hold colour in 3 or 4 interleaved channels of one byte.
bool fx_graph_canDrawInto(const SxPicBuf& buffer);

/// Draws a graph over a whole image whose buffer fx_graph_canDrawInto() accepts. Changes only the pixels. Call it on
/// the GUI thread.
///
/// Points that an axis cannot show do not prevent drawing the others. A point whose x is not finite is omitted; a point
/// whose y is not finite makes a gap in its line. If a fixed range is empty or not finite, the fitted range is used
/// instead. If a fixed range's limits are in the wrong order, they are swapped.
///
/// In an image with four channels, red and blue end up exchanged.
void fx_script_DrawIntoImage(CxGraphData* graph, CxImageData* image);

#pragma once

class CxImageData;
struct CxGraphData;
struct SxPicBuf;

/// Whether a graph can be drawn into a buffer: colour, 3 or 4 channels of one byte, the channels of a pixel side by
/// side.
bool fx_graph_canDrawInto(const SxPicBuf& buffer);

/// Draws a graph over the whole of an image that fx_graph_canDrawInto() accepts; nothing but its pixels changes. GUI
/// thread.
///
/// Points that no axis can show do not keep the rest from being drawn: a point whose x is not finite is left out, one
/// whose y is not finite makes a gap in its line. A fixed range that is empty or not finite is not used; the fitted one
/// stands. One that is given the wrong way round is turned.
///
/// With four channels red and blue end up exchanged in the image.
void fx_script_DrawIntoImage(CxGraphData* graph, CxImageData* image);

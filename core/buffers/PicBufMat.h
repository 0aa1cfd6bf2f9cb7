#pragma once

#include "SxPicBuf.h"

#include <opencv2/core/mat.hpp>

#include <optional>

/// The OpenCV depth that stores the same values, or -1: OpenCV has no unsigned 32-bit, no 64-bit integer and no packed
/// values.
int matDepth(ExImageDataType type);

/// The data type of an OpenCV depth, or None.
ExImageDataType dataTypeOfDepth(int depth);

/// The OpenCV depth whose values have the same size, for work that only moves values. Moving never changes a bit.
int moveDepth(ExImageDataType type);

/// A matrix on the buffer's own pixels; nothing when OpenCV cannot address them: values at odd addresses, more than
/// 512 channels, a side beyond the range of int. A matrix on a constant buffer is for reading only.
std::optional<cv::Mat> wrapMat(const SxPicBuf& buffer, int depth);

/// A matrix for reading: on the buffer's own pixels where possible, else a copy. Throws cv::Exception when the buffer
/// is beyond what a matrix can be.
cv::Mat readMat(const SxPicBuf& buffer, int depth);

/// Copies the rows of a matrix with the buffer's geometry into the buffer.
void storeMat(const cv::Mat& mat, SxPicBuf& buffer);

/// A new picture buffer with the matrix's pixels, owned by the caller; `data` is null when memory runs out. Colour
/// when there are three or four channels; bpc is the width of the type.
SxPicBuf picBufFromMat(const cv::Mat& mat);

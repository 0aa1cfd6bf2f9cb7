#pragma once

#include "SxPicBuf.h"

#include <opencv2/core/mat.hpp>

#include <optional>

/// The OpenCV depth that stores the same values, or -1. OpenCV has no depth for unsigned 32-bit, 64-bit integer and
/// packed values.
int matDepth(ExImageDataType type);

/// The data type that stores the values of an OpenCV depth, or None.
ExImageDataType dataTypeOfDepth(int depth);

/// An OpenCV depth whose values have the same size as the type's. For moving values, which never changes their bits.
int moveDepth(ExImageDataType type);

/// A matrix on the buffer's own pixels. Nothing if OpenCV cannot address them: misaligned values, more than 512
/// channels, or a width or height beyond the range of int. Do not write to the matrix of a constant buffer.
std::optional<cv::Mat> wrapMat(const SxPicBuf& buffer, int depth);

/// A matrix for reading: on the buffer's own pixels if possible, otherwise on a copy. Throws cv::Exception if the
/// buffer is too large for a matrix.
cv::Mat readMat(const SxPicBuf& buffer, int depth);

/// Copies the rows of a matrix into a buffer of the same geometry.
void storeMat(const cv::Mat& mat, SxPicBuf& buffer);

/// A new picture buffer with the matrix's pixels, owned by the caller. It is colour if there are three or four
/// channels; bpc is the width of the type. `data` is null if there is not enough memory.
SxPicBuf picBufFromMat(const cv::Mat& mat);

#pragma once

/// The numbers of an editor's marks.
namespace EditorMarks {

constexpr int errorLine = 0;   ///< the background of a line in which a run has failed
constexpr int errorSign = 1;   ///< the sign beside it
constexpr int visitedLine = 2; ///< the background of a line that a link has led to
constexpr int badSyntax = 8;   ///< the wave below text that is not valid Python

/// The numbers that the library uses for the signs of folds.
constexpr int foldMarkers[] = {25, 26, 27, 28, 29, 30, 31};

} // namespace EditorMarks

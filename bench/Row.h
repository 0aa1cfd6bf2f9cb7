#pragma once

#include <vector>

/// One row of the table of benchmarks: a task beside its peer.
struct Row {
    const char* group;
    const char* task;
    const char* peer; ///< what the task is compared with
    double goal;      ///< the largest ratio that is good enough
    double ours;      ///< what was measured, in `unit`
    double peers;     ///< the same for the peer
    const char* unit; ///< s, ms or B
};

/// Whether the program's option --filter lets a task through: the task or its group contains the text of the option.
bool isWanted(const char* group, const char* task);

/// Prints a row for the program that makes the table. The ratio is that of `ours` to `peers`.
void printRow(const Row& row);

/// Prints a row with the ratio of each turn.
void printRow(const Row& row, std::vector<double> ratios);

#pragma once

/// Copies what a script writes to `sys.stderr` to UnwrittenErrors, while the plugin redirects that stream.
namespace ErrorCopy {

/// Copies what is written to `sys.stderr` if that is an object of the type; called once, by the interpreter. The type's
/// method `write` is replaced by one that calls the old one and has no Python frame, so tracebacks do not change. If
/// the type cannot be changed, nothing is copied.
void copyWritesOf(void* type) noexcept;

} // namespace ErrorCopy

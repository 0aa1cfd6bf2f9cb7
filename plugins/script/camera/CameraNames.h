#pragma once

#include <QtCore/QString>

// The names by which scripts reach camera parameters. This code does not use the interpreter. All names are
// case-sensitive.

/// What an attribute name such as get_level_maximum means.
struct CameraAttributeName {
    enum class Action { None, Read, Enable, Disable, Set };

    Action action = Action::None; ///< None for an ordinary attribute; the texts are then empty
    QString parameter;            ///< the name without prefix and range word, as the environment knows it
    QString target;               ///< the name to read or write, with the range word as a suffix: level:max
};

/// Splits an attribute name into its parts.
CameraAttributeName fx_cam_parseAttributeName(const QString& text);

/// What a parameter name such as level:max selects.
struct CameraParameterName {
    enum class Selected { Value, Minimum, Maximum, Increment };

    QString base; ///< without the suffix
    Selected selected = Selected::Value;
};

/// Splits the suffix off a parameter name. A name with an unknown suffix stays whole.
CameraParameterName fx_cam_splitSuffix(const QString& name);

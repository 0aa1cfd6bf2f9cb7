#pragma once

#include <QtCore/QString>

// The names by which scripts reach camera parameters, free of the interpreter. Letter case counts everywhere.

/// What an attribute name such as get_level_maximum says.
struct CameraAttributeName {
    enum class Action { None, Read, Enable, Disable, Set };

    Action action = Action::None; ///< None: an ordinary attribute, and the texts are empty
    QString parameter;            ///< without prefix and range word: what the environment is asked about
    QString target;               ///< what is read or written: the name with the range word as a suffix, level:max
};

/// Takes an attribute name apart.
CameraAttributeName fx_cam_parseAttributeName(const QString& text);

/// What a parameter's name such as level:max selects.
struct CameraParameterName {
    enum class Selected { Value, Minimum, Maximum, Increment };

    QString base; ///< without the suffix
    Selected selected = Selected::Value;
};

/// Splits the suffix off a parameter's name. A name with an unknown suffix stays whole.
CameraParameterName fx_cam_splitSuffix(const QString& name);

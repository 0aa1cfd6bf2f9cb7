#pragma once

#include "CxValue.h"
#include "HostGlobal.h"

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// One parameter of a camera: its current value, its limits and how it may be used.
///
/// Owned by the CxCameraParameters that lists it. The public fields are set before the store is used and do not change
/// after that, so any thread may read them. The current value may be read and written on any thread.
class VANTREL_HOST_EXPORT CxCameraParam
{
public:
    /// Who a parameter is meant for. An operation that takes a class applies to the parameters of that class and of the
    /// lower ones.
    enum ExVisibility {
        Basic = 1,    ///< for every user
        Advanced = 2, ///< for users who know the camera
        All = 3,      ///< for the camera's maker; as an argument, every parameter
    };

    /// A parameter with its first value, which also sets its type.
    CxCameraParam(const QString& name, const CxValue& value);

    const QString& name() const { return m_name; }

    /// The type of the value, which never changes.
    CxValue::ExType type() const { return m_type; }

    /// The current value, in the parameter's type. Any thread.
    CxValue paramValue() const;

    /// Converts a value to the parameter's type and stores it. Checks no limits and does not write to the camera. Meant
    /// for the parameter store only; other callers use CxCameraParameters::setParamDirect(). Any thread.
    void setParamValue(const CxValue& value);

    CxValue minimum;   ///< smallest value, in the parameter's type; empty if there is no limit
    CxValue maximum;   ///< largest value, in the parameter's type; empty if there is no limit
    CxValue increment; ///< step that user interfaces offer, or empty; values between the steps are allowed

    QStringList choices;             ///< the texts that a string parameter accepts; if empty, any text
    bool notSupported = false;       ///< the name is known, but this camera does not have it
    bool readOnly = false;           ///< only the camera changes it
    ExVisibility visibility = Basic; ///< who it is meant for

private:
    Q_DISABLE_COPY_MOVE(CxCameraParam)

    const QString m_name;
    const CxValue::ExType m_type;
    mutable QMutex m_mutex;
    CxValue m_value;
};

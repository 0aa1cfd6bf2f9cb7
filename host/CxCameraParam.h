#pragma once

#include "CxValue.h"
#include "HostGlobal.h"

#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// One parameter of a camera: its current value, its limits and what may be done with it.
///
/// Owned by the CxCameraParameters that lists it. The public fields are set once, before the store is used, and then
/// only read, so any thread may read them; the current value is guarded by the record itself.
class VANTREL_HOST_EXPORT CxCameraParam
{
public:
    /// Whom a parameter is meant for. An operation that is given a class concerns the parameters of this class and of
    /// the ones below.
    enum ExVisibility {
        Basic = 1,    ///< everybody
        Advanced = 2, ///< people who know the camera
        All = 3,      ///< everything, also what only the maker needs
    };

    /// A parameter whose type is the type of its first value.
    CxCameraParam(const QString& name, const CxValue& value);

    const QString& name() const { return m_name; }

    /// The type of all its values.
    CxValue::ExType type() const { return m_type; }

    /// The current value, with the parameter's own type. Any thread.
    CxValue paramValue() const;

    /// Stores a value, converted to the parameter's type, and nothing else: neither limits nor the camera are asked.
    /// For the store and for the camera's own reports; others write with CxCameraParameters::setParamDirect().
    void setParamValue(const CxValue& value);

    CxValue minimum;   ///< smallest value, of the parameter's type; empty when there is no limit
    CxValue maximum;   ///< largest value, likewise
    CxValue increment; ///< step that user interfaces offer; values between the steps are allowed. Perhaps empty

    QStringList choices;             ///< the texts that a string parameter takes; any when empty
    bool notSupported = false;       ///< known by name, but this camera does not have it
    bool readOnly = false;           ///< only the camera changes it
    ExVisibility visibility = Basic; ///< whom it is meant for

private:
    Q_DISABLE_COPY_MOVE(CxCameraParam)

    const QString m_name;
    const CxValue::ExType m_type;
    mutable QMutex m_mutex;
    CxValue m_value;
};

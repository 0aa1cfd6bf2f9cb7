#include "CxCameraParam.h"

#include <QtCore/QMutexLocker>

CxCameraParam::CxCameraParam(const QString& name, const CxValue& value)
    : m_name(name)
    , m_type(value.type())
    , m_value(value)
{
}

CxValue CxCameraParam::paramValue() const
{
    const QMutexLocker lock(&m_mutex);
    return m_value;
}

void CxCameraParam::setParamValue(const CxValue& value)
{
    const CxValue converted = value.converted(m_type);
    const QMutexLocker lock(&m_mutex);
    m_value = converted;
}

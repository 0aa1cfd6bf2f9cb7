#include "SourceText.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringDecoder>
#include <QtCore/QStringEncoder>

namespace {

const QByteArray mark = QByteArrayLiteral("\xef\xbb\xbf");

/// The encoding that a text names in one of its first two lines; the second counts if the first is blank or a comment.
QString declaredEncoding(const QString& text)
{
    static const QRegularExpression declaration(QStringLiteral("^[ \\t\\f]*#.*?coding[:=][ \\t]*([-\\w.]+)"));
    static const QRegularExpression blankOrComment(QStringLiteral("^[ \\t\\f]*(#|$)"));
    static const QRegularExpression lineEnd(QStringLiteral("\\r\\n|\\r|\\n"));
    const QStringList lines = text.left(1000).split(lineEnd);
    for (int i = 0; i < 2 && i < lines.size(); ++i) {
        if (const auto found = declaration.match(lines.at(i)); found.hasMatch())
            return found.captured(1);
        if (!blankOrComment.match(lines.at(i)).hasMatch())
            break;
    }
    return QStringLiteral("utf-8");
}

/// A name that Qt knows for an encoding that Python knows by other names as well.
QByteArray knownName(const QString& encoding)
{
    QString name = encoding.toLower().replace(QLatin1Char('_'), QLatin1Char('-'));
    if (name == QStringLiteral("utf8") || name.startsWith(QStringLiteral("utf-8")))
        return QByteArrayLiteral("UTF-8");
    if (name == QStringLiteral("latin-1") || name == QStringLiteral("latin1") ||
        name.startsWith(QStringLiteral("iso-latin-1")))
        return QByteArrayLiteral("ISO-8859-1");
    if (name == QStringLiteral("ascii"))
        return QByteArrayLiteral("US-ASCII");
    return name.toLatin1();
}

std::optional<QByteArray> encode(const QString& text, const QString& encoding)
{
    QStringEncoder encoder(knownName(encoding).constData(), QStringEncoder::Flag::Stateless);
    if (!encoder.isValid())
        return {};
    const QByteArray bytes = encoder(text);
    return encoder.hasError() ? std::optional<QByteArray>() : bytes;
}

} // namespace

std::optional<SourceText> SourceText::decoded(const QByteArray& bytes, QString& problem)
{
    SourceText source;
    source.hasMark = bytes.startsWith(mark);
    const QByteArray content = source.hasMark ? bytes.mid(mark.size()) : bytes;
    if (content.contains('\0')) {
        problem = QStringLiteral("it contains null bytes");
        return {};
    }
    const QString encoding = declaredEncoding(QString::fromLatin1(content.left(1000)));
    QStringDecoder decoder(knownName(encoding).constData(), QStringDecoder::Flag::Stateless);
    if (!decoder.isValid()) {
        problem = QStringLiteral("the encoding %1 is not known").arg(encoding);
        return {};
    }
    source.text = decoder(content);
    if (decoder.hasError() || encode(source.text, encoding) != content) {
        problem = QStringLiteral("it is not text in the encoding %1").arg(encoding);
        return {};
    }
    return source;
}

std::optional<QByteArray> SourceText::encoded(QString& problem) const
{
    const QString encoding = declaredEncoding(text);
    const auto bytes = encode(text, encoding);
    const QStringDecoder known(knownName(encoding).constData());
    if (!known.isValid()) {
        problem = QStringLiteral("the encoding %1 is not known").arg(encoding);
        return {};
    }
    QStringDecoder decoder(knownName(encoding).constData(), QStringDecoder::Flag::Stateless);
    if (!bytes || QString(decoder(*bytes)) != text) {
        problem = QStringLiteral("the text has characters that the encoding %1 lacks").arg(encoding);
        return {};
    }
    return hasMark ? mark + *bytes : *bytes;
}

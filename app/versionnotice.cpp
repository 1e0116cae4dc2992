// SPDX-License-Identifier: MIT
#include "app/versionnotice.h"

#include <QCoreApplication>
#include <QTextDocument>

namespace versionnotice
{

namespace
{

/// Lays a text out like a message box does, and notes whether it asks for anything from outside.
class ResourceProbe : public QTextDocument
{
public:
    bool wantsResources(const QString &richText)
    {
        setHtml(richText);
        size(); // pictures are asked for while the text is laid out
        return asked;
    }

protected:
    QVariant loadResource(int, const QUrl &) override
    {
        asked = true;
        return QByteArray();
    }

private:
    bool asked = false;
};

QString translated(const char *text)
{
    return QCoreApplication::translate("MainWindow", text);
}

QString notice(const QString &link, const QString &description)
{
    QString text = "<p style='margin-right:5em;'> " +
                   translated("There is a new software version available!") + "<br>" +
                   translated("You can download it from the following link:") + "<br><a href='" + link +
                   "'>" + link + "</a></p>";
    if (!description.isEmpty())
        text += translated("Details:") + "<br><i>" + description + "</i>";
    return text;
}

QString escaped(QString text)
{
    return text.toHtmlEscaped().replace('\'', "&#39;");
}

} // namespace

QString text(const QUrl &downloadLink, const QString &description)
{
    const QString link = downloadLink.toString();
    const QString asItIs = notice(link, description);
    return ResourceProbe().wantsResources(asItIs) ? notice(escaped(link), escaped(description)) : asItIs;
}

bool mayOpenLink(const QUrl &link)
{
    return link.scheme() == "http" || link.scheme() == "https";
}

} // namespace versionnotice

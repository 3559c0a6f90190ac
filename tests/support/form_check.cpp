#include "support/form_check.h"

#include <QFile>
#include <QMetaObject>
#include <QXmlStreamReader>

namespace tessaly::test {

using namespace Qt::StringLiterals;

QStringList unknownFormProperties(const QString &uiFile, QObject *root, const QStringList &namesOfAnyView)
{
    QFile file(uiFile);
    if (!file.open(QIODevice::ReadOnly)) return {u"unreadable"_s};
    QStringList faults;
    QStringList objects; // those around the present place in the file, outermost first
    int views = 0;
    QXmlStreamReader xml(&file);
    const auto isObject = [&] { return xml.name() == "widget"_L1; };
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && isObject()) {
            ++views;
            objects << xml.attributes().value("name"_L1).toString();
        } else if (xml.isEndElement() && isObject()) {
            objects.removeLast();
        } else if (xml.isStartElement() && xml.name() == "property"_L1 && !objects.isEmpty() &&
                   xml.attributes().value("stdset"_L1) == "0"_L1) {
            const QString property = xml.attributes().value("name"_L1).toString();
            const QObject *object =
                root->objectName() == objects.last() ? root : root->findChild<QObject *>(objects.last());
            if (!object)
                faults << objects.last();
            else if (!namesOfAnyView.contains(property) &&
                     object->metaObject()->indexOfProperty(property.toLatin1().constData()) < 0)
                faults << u"%1.%2"_s.arg(objects.last(), property);
        }
    }
    return xml.hasError() || views == 0 ? QStringList{u"unreadable"_s} : faults;
}

} // namespace tessaly::test

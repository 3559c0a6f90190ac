// A control of a running program, as assistive technology sees it on the accessibility bus.
#pragma once

#include <QDBusConnection>
#include <QList>
#include <QRect>
#include <QString>

#include <optional>

namespace tessaly::e2e {

// Numbers of AT-SPI, those that the tests look for.
enum class Role : uint {
    alert = 2,
    checkBox = 7,
    dialog = 16,
    filler = 20, // a plain widget
    frame = 23,
    image = 27,
    label = 29,
    progressBar = 42,
    button = 43,
    slider = 51,
    statusBar = 54,
    field = 61
};
enum class State : uint { checked = 4, enabled = 8, focused = 12, showing = 25 };

// Every question goes to the program at the time of asking; about a control that is gone meanwhile the answer
// is empty, false or 0.
class Control
{
public:
    Control(QDBusConnection bus, QString service, QString path);

    QString name() const;
    QString description() const;
    Role role() const;
    bool is(State state) const;
    QString text() const;  // what a field holds
    double value() const;  // of a slider or a bar
    QRect extents() const; // pixels on the screen
    QList<Control> children() const;

private:
    QVariantList call(const char *interface, const char *method, const QVariantList &arguments = {}) const;
    QVariant property(const char *interface, const char *name) const;

    QDBusConnection m_bus;
    QString m_service;
    QString m_path;
};

// The first control on screen of that role and, unless it is empty, that name, in a program's windows: the
// newest first, a sheet before what lies under it. Entries of lists and tables are not looked at.
// A slider is named after its value; it is known by its description.
std::optional<Control> findControl(const Control &root, Role role, const QString &name = {});

// The controls below as lines of text, for a person who reads of a failed test.
QString describeControls(const Control &root, int depth = 0);

} // namespace tessaly::e2e

#pragma once
// Controls found by their object names, as the screens name them.
#include <QObject>
#include <QVariant>

// A control the test cannot go on without.
template <typename T>
T *child(const QObject &parent, const char *name)
{
    T *c = parent.findChild<T *>(QLatin1String(name));
    if (!c)
        qFatal("no control %s", name);
    return c;
}

// A member of a control array: the control of that name whose "Index" is `index`.
template <typename T>
T *indexed(const QObject &parent, const char *name, int index)
{
    for (T *w : parent.findChildren<T *>(QLatin1String(name)))
        if (w->property("Index").toInt() == index)
            return w;
    return nullptr;
}

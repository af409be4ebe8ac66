#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>
#include <QString>

// A file's bytes, written and read whole, and their SHA-256: what tests compare
// to prove a file was left as it was.
inline QByteArray readFile(const QString &path)
{
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(bytes);
}

inline QByteArray digest(const QString &path)
{
    return QCryptographicHash::hash(readFile(path), QCryptographicHash::Sha256);
}

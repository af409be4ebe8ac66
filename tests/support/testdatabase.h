#pragma once

#include "shell/database.h"

#include <QTemporaryDir>

#include <memory>

// A fresh database with the full schema in a temporary home folder, for one test.
class TestDatabase {
public:
    TestDatabase();
    fenlark::Database &db() { return *m_db; }
    QString home() const { return m_dir.path(); }
    QString file(const QString &name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<fenlark::Database> m_db;
};

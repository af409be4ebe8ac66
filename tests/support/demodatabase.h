#pragma once

#include "shell/database.h"

#include <QTemporaryDir>

#include <memory>

// A fresh copy of the demo property for one test: generated once per test
// program and copied, so a test file with many cases does not generate it anew
// for each of them.
class DemoDatabase {
public:
    DemoDatabase();
    fenlark::Database &db() { return *m_db; }
    QString home() const { return m_dir.path(); }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<fenlark::Database> m_db;
};

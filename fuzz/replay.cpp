// Without libFuzzer a fuzz target runs every file of the folders (or the files)
// it is given once, in name order: the seed corpus and the inputs kept from
// earlier findings become a regression test.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv)
{
    int inputs = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        QStringList files;
        if (QFileInfo(path).isDir()) {
            for (const QString &name : QDir(path).entryList(QDir::Files, QDir::Name))
                files << QDir(path).filePath(name);
        } else {
            files << path;
        }
        for (const QString &file : files) {
            QFile f(file);
            if (!f.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(file));
                return 2;
            }
            const QByteArray data = f.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(data.constData()), static_cast<size_t>(data.size()));
            ++inputs;
        }
    }
    std::printf("%d inputs run\n", inputs);
    return inputs > 0 ? 0 : 1;
}

// Where windows are the next time.
#include "controls/WindowPlaces.h"

#include <QTemporaryDir>
#include <QWidget>

#include <gtest/gtest.h>

namespace drx9 {
namespace {

TEST(WindowPlaces, AWindowIsNeverPutWhereNoScreenIs) {
    const QList<QRect> two{{0, 0, 1280, 800}, {1280, 0, 1920, 1080}};
    struct Case {
        QRect wanted;
        QRect placed;
    };
    const Case cases[] = {{{100, 50, 940, 540}, {100, 50, 940, 540}},       // there
                          {{1400, 100, 1280, 800}, {1400, 100, 1280, 800}}, // on the second screen
                          {{1200, 10, 940, 540}, {1280, 10, 940, 540}},   // between them: where most of it is
                          {{5000, 4000, 940, 540}, {340, 260, 940, 540}}, // its screen is gone
                          {{-300, -40, 940, 540}, {0, 0, 940, 540}},
                          {{0, 0, 2560, 1400}, {1280, 0, 1920, 1080}}}; // larger than any screen, now
    for (const Case& c : cases) {
        const QRect placed = WindowPlaces::onScreen(c.wanted, two);
        EXPECT_EQ(placed, c.placed) << c.wanted.x() << " " << c.wanted.width() << ": " << placed.x() << " "
                                    << placed.y();
    }
}

TEST(WindowPlaces, AreKeptOverTwoStartsAndLostWithoutAWord) {
    const QTemporaryDir folder;
    // A file in a folder that is yet to be made; then one that is a folder and can be neither read nor
    // written.
    const std::pair<QString, bool> files[] = {
        {folder.filePath("new/windows.ini"), true}, {folder.path(), false}, {QString(), false}};
    for (const auto& [file, kept] : files) {
        for (const bool first : {true, false}) {
            WindowPlaces places(file);
            QWidget window;
            window.setObjectName("frmAny");
            EXPECT_EQ(places.follow(window), kept && !first) << file.toStdString();
            if (first) {
                window.move(120, 90);
                window.resize(400, 300);
                window.show();
                window.close();
            } else if (kept) {
                EXPECT_EQ(window.size(), QSize(400, 300));
                EXPECT_EQ(window.pos(), QPoint(120, 90));
            }
        }
    }
}

} // namespace
} // namespace drx9

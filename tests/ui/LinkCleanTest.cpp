// SPDX-License-Identifier: GPL-3.0-or-later
#include <QPushButton>

#include "UiTestSupport.h"

using namespace twinsweep;
using namespace twinsweep::testing;
using namespace twinsweep::ui;

// Cleaning with the hard-link choice when a group has every copy marked.
class LinkCleanTest : public QObject {
    Q_OBJECT
  private slots:
    void cleanup() {
        const auto settings = SettingsManager::shared();
        settings->duplicateFileList.clear();
        settings->moveToTrash = true;
        settings->replaceWithHardLinks = false;
    }

    void aWholeGroupIsLeftListedAndNotCalledCleaned() {
        const auto settings = SettingsManager::shared();
        settings->replaceWithHardLinks = true; // as the main window's choice sets it
        settings->moveToTrash = false;
        Results r;
        r.choose(3); // every copy of the selected group
        r.clean({"Yes", "OK"});
        QCOMPARE(r.answers.said,
                 (QStringList{u"Some groups have every copy selected; with hard links, those "
                              u"groups are left as they are. Continue?"_s,
                              u"No selected copy could be replaced by a hard link; every file "
                              u"was left as it was."_s}));
        QCOMPARE(r.listed(), 3);
        QVERIFY(r.w->isVisible());
        QCOMPARE(snapshot(r.tree.root()), r.before);

        // "No" to the question: nothing asked after it.
        r.clean({"No"});
        QCOMPARE(r.answers.said.size(), 3);
        QCOMPARE(r.listed(), 3);
    }
};

UI_TEST_MAIN(LinkCleanTest)

#include "LinkCleanTest.moc"

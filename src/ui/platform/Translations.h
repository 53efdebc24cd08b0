// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLocale>
#include <QObject>

class QTranslator;

namespace twinsweep::ui {

// The texts of the windows in the user's language: ours (twinsweep_xx.qm)
// and Qt's own (qtbase_xx.qm, for the standard buttons and dialogs). A
// language without a translation, English and C included, keeps the texts
// as written in the sources.
class Translations : public QObject {
    Q_OBJECT
  public:
    explicit Translations(QObject* parent = nullptr);
    ~Translations() override;

    // Replaces the translations in use; true when ours were found for locale.
    bool use(const QLocale& locale);

  private:
    void removeAll();

    QTranslator* ours_ = nullptr;
    QTranslator* qt_ = nullptr;
};

} // namespace twinsweep::ui

#include <QCoreApplication>
#include <QEnterEvent>
#include <QFocusEvent>
#include <QHBoxLayout>

#include "controls/OVBackgroundBox.h"
#include "controls/OVDisplayWell.h"
#include "controls/OVLoadingIndicator.h"
#include "controls/OVLoadingPanel.h"
#include "controls/OVOverlayView.h"
#include "controls/OVTransportBackgroundView.h"
#include "controls/buttons/OVHoverButton.h"
#include "controls/buttons/OVRoundedTransportButton.h"
#include "controls/buttons/OVTransportButton.h"
#include "controls/buttons/OVTransportButtonCell.h"
#include "gallery/GalleryPages.h"

namespace {

constexpr QSize kButton(46, 32);
const QColor kDark(35, 45, 66);

/// The look of a button: pressed, on, disabled, focused.
struct ButtonState {
  const char* label;
  bool highlighted = false;
  bool on = false;
  bool enabled = true;
};

constexpr ButtonState kButtonStates[] = {
    {"off"},
    {"off, pressed", true},
    {"on", false, true},
    {"on, pressed", true, true},
    {"disabled", false, false, false},
    {"on, disabled", false, true, false},
};

template <typename Button>
void setState(Button* button, const ButtonState& state) {
  button->setIsOn(state.on);
  button->setIsHighlighted(state.highlighted);
  button->setEnabled(state.enabled);
}

// A button can place its bezel only in a bar in a content view, as in the window.
QWidget* addBar(GalleryPage& page, const QString& label, QSize size) {
  return page.addBar<OVTransportBackgroundView>(label, size);
}

OVTransportButton* addButton(QWidget* bar, int index, const char* onImage, const char* offImage) {
  OVTransportButton* button = nullptr;
  if (index == 0 || index == 5) {
    auto* const rounded = new OVRoundedTransportButton(bar);
    rounded->setType(index == 0 ? 1 : 0);
    button = rounded;
  } else {
    button = new OVTransportButton(bar);
  }
  button->setGeometry(QRect(QPoint(14 + 43 * index, 13), kButton));
  button->setOnImage(QString::fromLatin1(onImage));
  button->setOffImage(QString::fromLatin1(offImage));
  return button;
}

void addTransport(GalleryPage& page, const ButtonState& state) {
  QWidget* const bar = addBar(page, QString::fromLatin1(state.label), {290, 58});
  constexpr const char* kImages[][2] = {
      {"prev.png", "prev.png"},   {"rec_on.png", "rec_off.png"},   {"stop.png", "stop.png"},
      {"pause.png", "pause.png"}, {"play_on.png", "play_off.png"}, {"next.png", "next.png"}};
  for (int i = 0; i < 6; ++i) {
    setState(addButton(bar, i, kImages[i][0], kImages[i][1]), state);
  }
}

void addWithKeyboard(GalleryPage& page) {
  QWidget* const bar = addBar(page, QStringLiteral("with the keyboard"), {290, 58});
  for (int i = 0; i < 6; ++i) {
    QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
    QCoreApplication::sendEvent(addButton(bar, i, "stop.png", "stop.png"), &focus);
  }
  page.newRow();
}

std::unique_ptr<GalleryPage> transportPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("transport-buttons"));
  for (const ButtonState& state : kButtonStates) {
    addTransport(*page, state);
  }
  page->newRow();
  addWithKeyboard(*page);
  for (const int type : {1, 0}) {
    for (const bool highlighted : {false, true}) {
      const QString label =
          QStringLiteral("type %1%2").arg(type).arg(highlighted ? ", pressed" : "");
      auto* const button = new OVRoundedTransportButton(addBar(*page, label, {130, 80}));
      button->setGeometry(10, 10, 110, 60);
      button->setType(type);
      button->setIsHighlighted(highlighted);
    }
  }
  return page;
}

std::unique_ptr<GalleryPage> hoverPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("hover-button"));
  for (const ButtonState& state : kButtonStates) {
    for (const bool hovering : {false, true}) {
      const QString label =
          QString::fromLatin1(state.label) + QLatin1String(hovering ? ", mouse over it" : "");
      auto* const button = new OVHoverButton(addBar(*page, label, {60, 58}));
      button->setGeometry(16, 15, 28, 28);
      button->setOnImage(QStringLiteral("spectrum_on.png"));
      button->setOffImage(QStringLiteral("spectrum_off.png"));
      button->setHoverImage(QStringLiteral("spectrum_hover.png"));
      if (hovering) {
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
        QCoreApplication::sendEvent(button, &enter);
      }
      setState(button, state);
    }
  }
  return page;
}

template <typename Cell>
void addCells(GalleryPage& page, const QString& label) {
  for (const bool highlighted : {false, true}) {
    for (const bool enabled : {true, false}) {
      auto* const cell = page.addView<Cell>(label + QLatin1String(highlighted ? ", pressed" : "") +
                                                QLatin1String(enabled ? "" : ", disabled"),
                                            {90, 32});
      cell->setText(QStringLiteral("Play"));
      cell->setHighlighted(highlighted);
      cell->setEnabled(enabled);
    }
  }
  page.newRow();
}

std::unique_ptr<GalleryPage> cellPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("platform-buttons"));
  addCells<OVTransportButtonCell>(*page, QStringLiteral("plain"));
  addCells<OVLeftTransportButtonCell>(*page, QStringLiteral("left"));
  addCells<OVRightTransportButtonCell>(*page, QStringLiteral("right"));
  return page;
}

void addLoadingPanel(GalleryPage& page, const QString& words) {
  auto* const panel = new OVLoadingPanel;
  auto* const row = new QHBoxLayout(panel);
  row->setContentsMargins(10, 4, 10, 3);
  row->setSpacing(10);
  row->addWidget(new OVLoadingLabel);
  auto* const bar = new OVLoadingIndicator;
  bar->setValue(42);
  row->addWidget(bar);
  panel->setActivity(words);
  page.addView(QStringLiteral("progress"), panel->sizeHint(), panel, kDark);
}

std::unique_ptr<GalleryPage> panelPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("panels"));
  page->addView<OVTransportBackgroundView>(QStringLiteral("transport bar"), {200, 58});
  page->addView<OVTransportBackgroundView>(QStringLiteral("above the spectrum"), {200, 58})
      ->setRenderBottomShadow(true);
  page->addView<OVBackgroundBox>(QStringLiteral("box"), {200, 58});
  QWidget* const bar = addBar(*page, QStringLiteral("well"), {256, 58});
  (new OVDisplayWell(bar))->setGeometry(10, 11, 236, 36);
  page->newRow();
  for (const QSize size : {QSize(120, 60), QSize(60, 8), QSize(8, 60), QSize(11, 11)}) {
    page->addView<OVOverlayView>(QStringLiteral("overlay"), size, kDark);
  }
  for (const int value : {0, 2, 37, 100}) {
    page->addView<OVLoadingIndicator>(QStringLiteral("%1 %").arg(value), {150, 4}, kDark)
        ->setValue(value);
  }
  page->newRow();
  for (const char* words : {"Loading", "Drawing the waveform"}) {
    addLoadingPanel(*page, QString::fromLatin1(words));
  }
  return page;
}

}  // namespace

void addButtonPages(GalleryPages& pages) {
  pages.push_back(transportPage());
  pages.push_back(hoverPage());
  pages.push_back(cellPage());
  pages.push_back(panelPage());
}

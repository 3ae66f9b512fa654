#include <cmath>
#include <random>

#include <QCoreApplication>
#include <QFocusEvent>
#include <QPainter>

#include "controls/OVDisplayWell.h"
#include "controls/OVNoticeView.h"
#include "controls/buttons/OVClippingLamp.h"
#include "displays/OVCircularVUView.h"
#include "displays/OVTimeView.h"
#include "gallery/GalleryPages.h"
#include "platform/views/NamedImage.h"
#include "support/fakes/FakeWaveformSummary.h"
#include "waveform/views/OVLossMarksView.h"
#include "waveform/views/OVPlaybackMarkerView.h"
#include "waveform/views/OVRecordingTickView.h"
#include "waveform/views/OVWaveFormView.h"

namespace {

constexpr QSize kWaveform(420, 160);

/// Noise that swells and fades like speech.
std::vector<float> speech(std::size_t count) {
  std::mt19937 random(3);
  std::vector<float> elements(count);
  for (std::size_t i = 0; i < count; ++i) {
    const float noise = 0.3F + static_cast<float>(random() % 1000U) / 1400.0F;
    const float place = static_cast<float>(i) / static_cast<float>(count);
    elements[i] = std::abs(std::sin(place * 21.0F)) * noise;
  }
  return elements;
}

OVWaveFormView* addWaveform(GalleryPage& page, const char* label, std::vector<float> elements,
                            QSize size = kWaveform) {
  auto* const view = page.addView<OVWaveFormView>(QString::fromUtf8(label), size);
  view->setWaveForm(std::make_shared<FakeWaveformSummary>(std::move(elements)));
  return view;
}

void addMarker(OVWaveFormView* view, double position, double level) {
  auto* const marker = new OVPlaybackMarkerView(view);
  marker->setGeometry(view->rect());
  marker->setPosition(position);
  marker->setAudioLevel(level);
}

std::unique_ptr<GalleryPage> waveformPage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("waveform"));
  addMarker(addWaveform(*page, "empty, marker at the start", {}), 0.0, 1.0);
  addWaveform(*page, "silence", std::vector<float>(1024, 0.0F));
  addMarker(addWaveform(*page, "1024 elements, marker at level 1", speech(1024)), 0.4, 1.0);
  addMarker(addWaveform(*page, "100 elements, marker at level 0", speech(100)), 0.6, 0.0);
  addMarker(addWaveform(*page, "full scale, marker at the end", std::vector<float>(64, 1.0F)), 1.0,
            0.5);
  auto* const keyboard = addWaveform(*page, "with the keyboard", speech(1024));
  QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
  QCoreApplication::sendEvent(keyboard, &focus);
  return page;
}

void addTick(OVWaveFormView* view, double position) {
  auto* const tick = new OVRecordingTickView(view);
  tick->setGeometry(view->rect());
  tick->setPosition(position);
}

void addLosses(OVWaveFormView* view) {
  auto* const losses = new OVLossMarksView(view);
  losses->setGeometry(view->rect());
  losses->setMarks({{.atFrame = 0, .frames = 5, .text = {}},
                    {.atFrame = 400, .frames = 90, .text = {}},
                    {.atFrame = 700, .frames = 0, .text = {}},
                    {.atFrame = 1000, .frames = 0, .text = {}}},
                   {});
  losses->setLengthInFrames(1000);
}

OVNoticeView* addNotice(GalleryPage& page, const char* label, const char* text) {
  auto* const view = addWaveform(page, label, speech(1024), {320, 64});
  addMarker(view, 0.2, 0.6);
  auto* const notice = new OVNoticeView(view);
  notice->setGeometry(10, view->height() - OVNoticeView::kHeight - 6, view->width() - 20,
                      OVNoticeView::kHeight);
  notice->setText(QString::fromUtf8(text));
  return notice;
}

OVClippingLamp* addLamp(GalleryPage& page, const char* label) {
  auto* const well = page.addView<OVDisplayWell>(QString::fromUtf8(label), {236, 36});
  auto* const meter = new OVCircularVUView(well);
  meter->setGeometry(7, 3, 60, 30);
  meter->setPollingFrequency(0.0);
  auto* const time = new OVTimeView(well);
  time->setGeometry(76, 8, 150, 14);
  auto* const lamp = new OVClippingLamp(well);
  lamp->setGeometry(65, 3, 13, 30);
  lamp->light(QString());
  return lamp;
}

std::unique_ptr<GalleryPage> noticePage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("notices"));
  addNotice(*page, "input", "Recording from Built-in Microphone");
  addNotice(*page, "no input", "No microphone");
  addNotice(*page, "a monitor", "No microphone: recording what this computer plays");
  addNotice(*page, "silence", "Nothing is coming in");
  addNotice(*page, "lost frames", "0.3 s were lost at 12:31");
  addNotice(*page, "lost frames in all", "Lost in this recording: 2.0 s, first at 12:31");
  addNotice(*page, "disk", "Space for less than 5 minutes of recording is left in “/var/tmp”.");
  addNotice(*page, "disk, last minute",
            "Space for less than a minute of recording is left in “/var/tmp”.");
  addNotice(*page, "memory", "This computer is running out of memory");
  addNotice(*page, "paused", "Recording has been paused.");
  addNotice(*page, "too long",
            "Recording from a microphone with a name that no line of this width could ever hold");
  page->newRow();
  for (const double position : {0.0, 0.4, 1.0}) {
    auto* const view = addWaveform(*page, "tick", speech(1024), {320, 64});
    addMarker(view, position == 1.0 ? 0.0 : position, 0.6);
    addTick(view, position);
  }
  addTick(addWaveform(*page, "tick over full scale", std::vector<float>(320, 1.2F), {320, 64}),
          0.6);
  page->newRow();
  addLosses(addWaveform(*page, "losses", speech(1024), {320, 64}));
  auto* const loud =
      addWaveform(*page, "losses over full scale", std::vector<float>(320, 1.2F), {320, 64});
  addLosses(loud);
  addTick(loud, 0.42);
  page->newRow();
  addLamp(*page, "clipped");
  addLamp(*page, "pressed")->setIsHighlighted(true);
  QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
  QCoreApplication::sendEvent(addLamp(*page, "with the keyboard"), &focus);
  return page;
}

/// Shows a picture of the program's resources.
class PictureView : public QWidget {
 public:
  explicit PictureView(const QString& name) : image_(name) {}

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(QPointF(), image_.size()), image_.forRatio(devicePixelRatioF()));
  }

 private:
  platform::NamedImage image_;
};

std::unique_ptr<GalleryPage> picturePage() {
  auto page = std::make_unique<GalleryPage>(QStringLiteral("pictures"));
  for (const char* name : {"rec_on", "rec_off", "play_on", "play_off", "prev", "next", "stop",
                           "pause", "spectrum_on", "spectrum_off", "spectrum_hover", "orvo-16",
                           "orvo-32", "orvo-48", "orvo-64", "orvo-128", "orvo-256", "vumeter"}) {
    const QString label = QString::fromLatin1(name);
    const QString file = label + QStringLiteral(".png");
    const QSize size = platform::NamedImage(file).size().toSize();
    page->addView(label, size, new PictureView(file));
  }
  return page;
}

}  // namespace

void addWaveformPages(GalleryPages& pages) {
  pages.push_back(waveformPage());
  pages.push_back(noticePage());
  pages.push_back(picturePage());
}

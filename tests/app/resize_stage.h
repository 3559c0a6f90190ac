// What the tests of saving and resizing share: the real window with an open video, and a converter that does
// as it is told.
#pragma once

#include "app/app_harness.h"
#include "platform/child_process.h"
#include "platform/printing.h"
#include "support/test_case.h"

namespace tessaly::test {

using namespace Qt::StringLiterals;

class ResizeStage
{
protected:
    void setUp()
    {
        setPrintTarget(PrintTarget::nowhere);
        app = std::make_unique<AppHarness>();
    }
    void tearDown()
    {
        app.reset();
        letRunsStart();
    }

    QString output() const { return app->folder.filePath(u"out.mp4"_s); }
    bool isConverting() const { return app->delegate.progressWindow->isVisible(); }

    // A moving picture of 640 x 360 and ten seconds; further streams follow it in the report.
    void open(const QByteArray &moreStreams = {})
    {
        const QByteArray report =
            R"({"streams": [{"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "25/1", "width": 640,
             "height": 360})" +
            moreStreams + R"(], "format": {"duration": "10.0"}})";
        app->letProberReport(report);
        app->drop(app->makeFile(u"clip.mov"_s));
        app->tools.forgetCalls(u"creator"_s);
        app->tools.forgetCalls(u"sniffer"_s);
    }
    void letConverter(const QList<QStringList> &steps) { app->tools.setSteps(u"creator"_s, steps); }

    std::unique_ptr<AppHarness> app;
};

} // namespace tessaly::test

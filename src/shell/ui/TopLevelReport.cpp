// File > Print: the report of the spectrum on show, in the print preview.
#include <QAction>

#include "plot/ui/SpectrumPlot.h"
#include "report/ui/PrintPreview.h"
#include "shell/ReportInput.h"
#include "shell/ui/ReportPicture.h"
#include "shell/ui/TopLevel.h"

namespace vexo {

// The main plot as it stands: axis, caption and shown range on top of the settings.
PictureView TopLevel::pictureView() const {
    PictureView view = PictureViewFrom(m_settings);
    view.unit = m_xUnit;
    view.caption = m_plot41->xAxis->label();
    view.first = m_plot41->xMin();
    view.last = m_plot41->xMax();
    return view;
}

PrintPreview* TopLevel::printPreview() const {
    return m_preview;
}

void TopLevel::mnuFilePrint() {
    // One preview at a time: a second Print shows the report as it is now.
    if (m_preview)
        m_preview->close();
    PrintPreview::Steps steps;
    steps.makePicture = [this] {
        const std::filesystem::path file = PictureFilePath(m_appDir);
        const PictureResult r = SaveSpectrumPicture(m_doc, pictureView(), file);
        if (!r.ok)
            m_messages->critical("Cannot write the spectrum picture " + file.string() + ": " +
                                 r.error);
    };
    steps.buildReport = [this] {
        const std::filesystem::path file = ReportFilePath(m_appDir);
        const ReportWriteResult r = WriteReport(ReportInputFrom(m_doc, m_rois, m_settings), file);
        if (!r.ok)
            m_messages->critical("Cannot write the report " + file.string() + ": " + r.error);
        return file;
    };
    m_preview = new PrintPreview(std::move(steps), *m_messages, this);
    m_preview->setAttribute(Qt::WA_DeleteOnClose);
    m_preview->show();
}

} // namespace vexo

#include "DetectorModel.h"

#include <cmath>

#include "IniFile.h"

namespace korvsim {

std::optional<DetectorKind> ParseDetectorKind(std::string_view text) {
    const std::string t = Trim(text);
    for (const char* name : {"NaI", "NaI3x3", "NaI(Tl)", "NaI(Tl)3x3"})
        if (EqualsNoCase(t, name))
            return DetectorKind::NaI3x3;
    for (const char* name : {"HPGe", "Ge"})
        if (EqualsNoCase(t, name))
            return DetectorKind::HPGe;
    return std::nullopt;
}

const char* DetectorKindName(DetectorKind kind) {
    return kind == DetectorKind::HPGe ? "HPGe" : "NaI3x3";
}

double DetectorModel::fwhmKeV(double e) const {
    if (e <= 0.0)
        return kind == DetectorKind::HPGe ? 0.8 : 1.0;
    if (kind == DetectorKind::HPGe) {
        // Electronic noise (0.8 keV) added in quadrature to the statistical term,
        // which gives 1.8 keV at 1332 keV.
        const double noise = 0.8, at1332 = 1.8;
        return std::sqrt(noise * noise + (at1332 * at1332 - noise * noise) * e / 1332.492);
    }
    // Scintillator: 7 % at 662 keV, growing as the square root of the energy.
    return 0.07 * 661.657 * std::sqrt(e / 661.657);
}

double DetectorModel::peakToTotal(double e) const {
    if (kind == DetectorKind::HPGe)
        return 1.0 / (1.0 + std::pow(e / 150.0, 0.9));
    return 1.0 / (1.0 + std::pow(e / 700.0, 1.3));
}

double DetectorModel::detectionWeight(double e) const {
    const double window = kind == DetectorKind::HPGe ? 12.0 : 18.0;
    const double transmitted = 1.0 - std::exp(-std::pow(e / window, 2.5));
    const double scale = kind == DetectorKind::HPGe ? 200.0 : 400.0;
    const double interacts = 1.0 / (1.0 + std::pow(e / scale, 0.9));
    return transmitted * interacts;
}

double DetectorModel::backscatterShare() const {
    return kind == DetectorKind::HPGe ? 0.04 : 0.06;
}

double DetectorModel::multipleScatterShare() const {
    return kind == DetectorKind::HPGe ? 0.08 : 0.15;
}

double DetectorModel::noiseScaleKeV() const {
    return kind == DetectorKind::HPGe ? 1.5 : 4.0;
}

double DetectorModel::hvGainExponent() const {
    return kind == DetectorKind::HPGe ? 0.0 : 7.0;
}

double DetectorModel::minimumBiasShare() const {
    return kind == DetectorKind::HPGe ? 0.8 : 0.0;
}

DetectorModel MakeDetectorModel(DetectorKind kind) {
    DetectorModel model;
    model.kind = kind;
    return model;
}

} // namespace korvsim

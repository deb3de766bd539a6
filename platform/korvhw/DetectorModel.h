#pragma once
// Response of the detector types the simulator offers: energy resolution, how an
// interaction splits between full-energy peak and Compton continuum, and the
// relative chance that a line interacts at all.
#include <optional>
#include <string_view>

namespace korvsim {

enum class DetectorKind { NaI3x3, HPGe };

// Accepts "NaI", "NaI3x3", "NaI(Tl)" and "HPGe"/"Ge", any case.
std::optional<DetectorKind> ParseDetectorKind(std::string_view text);
const char* DetectorKindName(DetectorKind kind);

struct DetectorModel {
    DetectorKind kind = DetectorKind::NaI3x3;

    // Full width at half maximum of the full-energy peak at energy e (keV), in keV.
    double fwhmKeV(double e) const;
    // Share of the interactions of a line of energy e that deposit all of it.
    double peakToTotal(double e) const;
    // Relative chance that a photon of energy e reaches and interacts in the crystal
    // (entrance window absorption at the low end, falling cross-section at the top).
    double detectionWeight(double e) const;
    // Share of the Compton continuum seen as the backscatter peak.
    double backscatterShare() const;
    // Share of the continuum filled in between Compton edge and peak by multiple
    // scattering (large crystals fill more).
    double multipleScatterShare() const;
    // Decay constant of the electronic noise towards zero energy, keV.
    double noiseScaleKeV() const;
    // Scintillators follow the photomultiplier gain, which grows as (HV/nominal)^k.
    double hvGainExponent() const;
    // Germanium needs its full bias; below this share of the nominal HV it gives
    // no usable pulses.
    double minimumBiasShare() const;
};

DetectorModel MakeDetectorModel(DetectorKind kind);

} // namespace korvsim

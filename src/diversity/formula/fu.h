// Fu's Fs.
#pragma once

namespace tov {

/// What became of Fs.
enum class FuStatus {
    finite,
    no_diversity,    ///< theta <= 0; Fs is +3.4028234663852886e+38
    smallest,        ///< S' = 0; Fs is -3.4028234663852886e+38
    largest,         ///< S' = 1; Fs is +3.4028234663852886e+38
    no_probability   ///< S' is outside 0 .. 1 or not a number; Fs is 0
};

/// Fs with the probability behind it.
struct FuFs {
    FuStatus status = FuStatus::no_probability;
    double Fs = 0.0;
    double S = 0.0;  ///< S', probability of k or more alleles
};

/// Fs = ln(S' / (1 - S')), S' the probability of at least the observed number of alleles (Fu 1997).
///
/// @param theta    Theta(Pi); only its sign is read.
/// @param p_fewer  probability of fewer alleles under theta.
[[nodiscard]] FuFs fu_fs(double theta, double p_fewer) noexcept;

}  // namespace tov

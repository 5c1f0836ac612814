#include "plot/fft.h"

#include <algorithm>
#include <memory>
#include <new>

namespace tarnwell::plot {
namespace {

struct FftwFree {
  void operator()(void* p) const noexcept { fftw_free(p); }
};
struct PlanDestroy {
  void operator()(fftw_plan p) const noexcept { fftw_destroy_plan(p); }
};
using Plan = std::unique_ptr<std::remove_pointer_t<fftw_plan>, PlanDestroy>;

template <typename T>
std::unique_ptr<T[], FftwFree> fftwArray(std::size_t n) {
  auto* p = static_cast<T*>(fftw_malloc(sizeof(T) * n));
  if (p == nullptr) throw std::bad_alloc();
  return std::unique_ptr<T[], FftwFree>(p);
}

Plan checked(fftw_plan plan) {
  if (plan == nullptr) throw std::bad_alloc();
  return Plan(plan);
}

}  // namespace

std::vector<std::complex<double>> forwardTransform(std::span<const double> signal) {
  const int n = static_cast<int>(signal.size());
  auto in = fftwArray<double>(n);
  auto out = fftwArray<fftw_complex>(n / 2 + 1);
  // Planned before the data is copied in: planning may overwrite the arrays.
  const Plan plan = checked(fftw_plan_dft_r2c_1d(n, in.get(), out.get(), FFTW_ESTIMATE));
  std::copy(signal.begin(), signal.end(), in.get());
  fftw_execute(plan.get());
  std::vector<std::complex<double>> spectrum(n / 2 + 1);
  for (int k = 0; k <= n / 2; ++k) spectrum[k] = {out[k][0], out[k][1]};
  return spectrum;
}

std::vector<double> inverseTransform(std::span<const std::complex<double>> spectrum, int n) {
  auto in = fftwArray<fftw_complex>(n / 2 + 1);
  auto out = fftwArray<double>(n);
  const Plan plan = checked(fftw_plan_dft_c2r_1d(n, in.get(), out.get(), FFTW_ESTIMATE));
  for (int k = 0; k <= n / 2; ++k) {
    in[k][0] = spectrum[k].real();
    in[k][1] = spectrum[k].imag();
  }
  fftw_execute(plan.get());
  return std::vector<double>(out.get(), out.get() + n);
}

}  // namespace tarnwell::plot

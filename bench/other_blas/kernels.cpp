// Times of the dense kernels that training leans on, through the BLAS's Fortran interface, so that any BLAS
// of the system can be loaded in place of OpenBLAS: a 2000 x 2000 dgemm, the quasi-Hessian's dsyrk (1201
// parameters, 1000 patterns) and a unit lower triangular solve of the factorization's size. Run by
// run.sh, once for each library.
#include <chrono>
#include <cstdio>
#include <vector>
#include <random>
extern "C" {
void dgemm_(const char*, const char*, const int*, const int*, const int*, const double*, const double*, const int*,
            const double*, const int*, const double*, double*, const int*);
void dsyrk_(const char*, const char*, const int*, const int*, const double*, const double*, const int*,
            const double*, double*, const int*);
void dtrsm_(const char*, const char*, const char*, const char*, const int*, const int*, const double*,
            const double*, const int*, double*, const int*);
}
template <class F> double Best(F f) { double best = 1e9; for (int r = 0; r < 7; ++r) { auto t0 = std::chrono::steady_clock::now(); f(); best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count()); } return best; }
int main() {
  std::mt19937 g(1); std::uniform_real_distribution<double> u(-1, 1);
  const int n = 2000; std::vector<double> a(n * n), b(n * n), c(n * n); for (auto& v : a) v = u(g); for (auto& v : b) v = u(g);
  const double one = 1.0, zero = 0.0;
  double t = Best([&] { dgemm_("N", "N", &n, &n, &n, &one, a.data(), &n, b.data(), &n, &zero, c.data(), &n); });
  printf("dgemm 2000: %.1f GFLOP/s\n", 2.0 * n * n * n / t / 1e9);
  const int p = 1201, k = 1000;
  t = Best([&] { dsyrk_("U", "N", &p, &k, &one, a.data(), &p, &zero, c.data(), &p); });
  printf("dsyrk 1201x1000: %.2f ms\n", t * 1e3);
  const int m = 600, w = 601; std::vector<double> l(m * m); for (int i = 0; i < m; ++i) l[i * m + i] = 1.0;
  t = Best([&] { dtrsm_("L", "L", "N", "U", &m, &w, &one, l.data(), &m, b.data(), &m); });
  printf("dtrsm 600x601: %.2f ms\n", t * 1e3);
}

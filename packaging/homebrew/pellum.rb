# A formula for Homebrew. It has not been run by Homebrew itself: what was tried is that
# packaging/homebrew/try, which stands in for it, can build, install and test with it. Before it can
# be handed out, the address and the checksum must be those of a released archive.
class Pellum < Formula
  desc "Small scripting language with two engines that agree"
  homepage "https://pellum.example/"
  url "https://pellum.example/pellum-6.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"
  license "MIT"

  depends_on "cmake" => :build

  def install
    system "cmake", "-S", ".", "-B", "build", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build", "--component", "program"
  end

  test do
    assert_equal "Pellum #{version}\n", shell_output("#{bin}/pellum --version")
    (testpath/"hello.plm").write "print(6 * 7)\n"
    assert_equal "42\n", shell_output("#{bin}/pellum hello.plm")
    assert_match "RuntimeError", shell_output("#{bin}/pellum -c 'print(nothing)' 2>&1", 1)
  end
end

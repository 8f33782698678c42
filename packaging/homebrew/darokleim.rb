# Builds darokleim from the archive of a release. Replace url and sha256 with those of the release; the project has no public
# place yet.
class Darokleim < Formula
  desc "Manage Android devices over adb: libraries and a command-line tool"
  homepage "https://darokleim.invalid/"
  url "https://darokleim.invalid/releases/darokleim-2.0.109.tar.gz"
  sha256 "0000000000000000000000000000000000000000000000000000000000000000"

  depends_on "cli11" => :build
  depends_on "cmake" => :build
  depends_on "ninja" => :build
  depends_on "pkgconf" => [:build, :test]
  depends_on "spdlog" => :build
  depends_on "fmt"
  depends_on "jsoncpp"

  def install
    system "cmake", "-S", ".", "-B", "build", "-G", "Ninja", "-DDAROKLEIM_BUILD_TESTS=OFF", *std_cmake_args
    system "cmake", "--build", "build"
    system "cmake", "--install", "build"
  end

  test do
    assert_match version.to_s, shell_output("#{bin}/darokleim --version")
    (testpath/"codes.c").write <<~C
      #include <darokleim/client.h>
      #include <string.h>
      int main(void) { return strcmp(dk_code_name(DK_NO_DEVICE), "DK_NO_DEVICE"); }
    C
    flags = shell_output("pkg-config --cflags --libs darokleim-client").split
    system ENV.cc, "codes.c", "-o", "codes", *flags, "-Wl,-rpath,#{lib}"
    system "./codes"
  end
end

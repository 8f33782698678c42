# homebrew.rb FORMULA SOURCE PREFIX: runs the steps of a Homebrew formula, its test included, in a copy of the source and into
# PREFIX, without Homebrew: enough of its class Formula for the formula of this project.
require "fileutils"
require "pathname"
require "tmpdir"

class Formula
  class << self
    attr_reader :tested

    %i[desc homepage sha256 license depends_on].each { |name| define_method(name) { |*| nil } }

    def url(text)
      @version = text[/-([0-9.]+)\.tar\.gz\z/, 1] or raise "the url names no version"
    end
    attr_reader :version

    def test(&block)
      @tested = block
    end
  end

  attr_reader :prefix, :testpath

  def initialize(prefix, testpath)
    @prefix = Pathname(prefix)
    @testpath = Pathname(testpath)
  end

  def version = self.class.version
  def bin = prefix / "bin"
  def lib = prefix / "lib"

  def std_cmake_args
    ["-DCMAKE_INSTALL_PREFIX=#{prefix}", "-DCMAKE_INSTALL_LIBDIR=lib", "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_FIND_FRAMEWORK=LAST"]
  end

  def system(*words)
    Kernel.system(*words.map(&:to_s)) or raise "failed: #{words.join(" ")}"
  end

  def shell_output(command)
    output = `#{command}`
    raise "failed: #{command}" unless $?.success?
    output
  end

  def assert_match(expected, text)
    raise "#{expected} is not in #{text}" unless text.include?(expected)
  end
end

def ENV.cc = "cc"

formula, source, prefix = ARGV.map { |path| File.expand_path(path) }
load formula
Dir.mktmpdir do |work|
  Dir.chdir(source) { Darokleim.new(prefix, work).install }
  ENV["PKG_CONFIG_PATH"] = "#{prefix}/lib/pkgconfig"
  Dir.chdir(work) { Darokleim.new(prefix, work).instance_eval(&Darokleim.tested) }
end
puts "the formula installs, and its test passes"

# ruby packaging/homebrew/try.rb   builds, installs and tests as the formula beside it says, in
# temporary folders. Stands in for Homebrew, of which it has just as much as the formula uses: the
# sources are those of the last commit, and nothing is fetched.
require "open3"
require "pathname"
require "tmpdir"

class Formula
  class << self
    attr_reader :tests

    %i[desc homepage url sha256 license].each do |name|
      define_method(name) { |value| (@facts ||= {})[name] = value }
    end

    def facts = @facts

    def depends_on(_what) = nil

    def test(&block) = @tests = block
  end

  attr_reader :prefix, :testpath

  def initialize(prefix, testpath)
    @prefix = Pathname(prefix)
    @testpath = Pathname(testpath)
  end

  def version = self.class.facts[:url][/-([0-9.]+)\.tar\.gz\z/, 1]

  def bin = prefix/"bin"

  def std_cmake_args
    ["-DCMAKE_INSTALL_PREFIX=#{prefix}", "-DCMAKE_INSTALL_LIBDIR=lib", "-DCMAKE_BUILD_TYPE=Release",
     "-DCMAKE_FIND_FRAMEWORK=LAST", "-DCMAKE_VERBOSE_MAKEFILE=ON", "-Wno-dev", "-DBUILD_TESTING=OFF"]
  end

  def system(*words)
    Kernel.system(*words, out: File::NULL) or raise "this failed: #{words.join(" ")}"
  end

  def shell_output(command, status = 0)
    output, result = Open3.capture2(command)
    assert_equal status, result.exitstatus
    output
  end

  def assert_equal(wanted, given)
    raise "wanted #{wanted.inspect}, got #{given.inspect}" unless wanted == given
  end

  def assert_match(pattern, text)
    raise "no #{pattern.inspect} in #{text.inspect}" unless text.match?(pattern)
  end
end

class Pathname
  def write(text) = File.write(to_s, text)
end

root = File.expand_path("../..", __dir__)
load File.join(__dir__, "pellum.rb")
missing = %i[desc homepage url sha256 license].reject { |name| Pellum.facts.key?(name) }
raise "the formula lacks #{missing.join(", ")}" unless missing.empty?

Dir.mktmpdir do |folder|
  sources, prefix, testpath = %w[sources prefix test].map { |name| File.join(folder, name) }
  [sources, prefix, testpath].each { |name| Dir.mkdir(name) }
  Kernel.system("git -C '#{root}' archive HEAD | tar -x -C '#{sources}'") or raise "no sources"
  formula = Pellum.new(prefix, testpath)
  Dir.chdir(sources) { formula.install }
  Dir.chdir(testpath) { formula.instance_exec(&Pellum.tests) }
end
puts "built, installed and tested"

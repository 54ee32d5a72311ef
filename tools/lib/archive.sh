# Sources of Debian's packages, from the archive that this machine installs from; apt checks their signatures.

# The lines of a list of sources, made from the machine's own list of programs. Without security updates: that archive
# need not have the sources, and they are for tools of tests.
source_list() {
  local keyring=/usr/share/keyrings/debian-archive-keyring.gpg
  apt-get indextargets --format '$(ORIGIN) $(COMPONENT) $(REPO_URI) $(RELEASE)' 'Created-By: Packages' 2>/dev/null |
    awk -v keyring="$keyring" '$1 == "Debian" && $2 == "main" && $3 !~ /security/ {
      print "deb-src [signed-by=" keyring "] " $3 " " $4 " main" }' | sort -u
}

# fetch_source <source package> <folder>: its files, packed as they are in the archive; nothing of the machine's apt
# changes. The folder is made.
fetch_source() {
  local package=$1 folder=$2 options
  mkdir -p "$folder/lists/partial" "$folder/cache/archives/partial"
  source_list >"$folder/sources.list"
  [ -s "$folder/sources.list" ] || { echo "apt names no archive of Debian" && return 1; }
  options=(-o Dir::Etc::SourceList="$folder/sources.list" -o Dir::Etc::SourceParts=-
    -o Dir::State::Lists="$folder/lists" -o Dir::Cache="$folder/cache"
    -o APT::Sandbox::User="$(id -un)" -o Acquire::Retries=3)
  apt-get -q "${options[@]}" update &&
    (cd "$folder" && apt-get -q "${options[@]}" --download-only source "$package")
}

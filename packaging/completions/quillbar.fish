complete -c quillbar -f
complete -c quillbar -l help -d 'Print a summary and exit'
complete -c quillbar -l version -d 'Print the version and exit'

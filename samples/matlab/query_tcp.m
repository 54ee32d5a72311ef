% Not yet run. Asks an instrument on the network who it is.
%
%   query_tcp                      query_tcp('192.168.0.10', 10001, 'MEAS?')
function query_tcp(host, port, cmd)
    if nargin < 1, host = '127.0.0.1'; end
    if nargin < 2, port = 10001; end
    if nargin < 3, cmd = '*IDN?'; end
    csTCPIP = 1;

    comm = actxserver('KespCommObj.CKespCommObj');
    % However this function ends.
    release = onCleanup(@() delete(comm));
    comm.CommStyle = csTCPIP;
    tcp = comm.CommObject;
    tcp.IPAddress = host;
    tcp.Port = port;

    % What is passed by reference comes back behind the result.
    [succeeded, result] = comm.Query('', cmd);
    fprintf('command:     %s\n', cmd);
    if succeeded
        fprintf('reply:       %s\n', result);
    else
        fprintf('source:      %s\n', comm.CommErrorSource);
        fprintf('description: %s\n', comm.CommErrorDescr);
    end
    disp(['status:      ' num2str(comm.CommError)]);
end
